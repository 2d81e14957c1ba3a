#pragma once

#include "link/providers/libusb/UsbBridge.h"
#include "link/providers/libusb/usb_context.h"

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>

/// The open bridges of one family by device index. An index is the position among the bridges plugged in at
/// the time of opening; a bridge that is open keeps its index until it is closed. May be used from any
/// thread.
template<typename Chip, size_t Count>
class BridgeTable
{
public:
    using ChipPointer = std::shared_ptr<Chip>;

    /// Of statics the one made first goes last, and the context has to outlive the bridges that are still
    /// open.
    BridgeTable() { transferContext(); }

    /// Null when the index is not open. A transfer in progress keeps its chip alive, whoever closes the
    /// index.
    ChipPointer chip(uint32_t index)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return index < Count ? m_chips[index] : nullptr;
    }

    /// Null on failure. A bridge that is already open stays as it is; when that was under another index,
    /// because bridges before it came or went, it is open under both.
    ChipPointer open(uint32_t index)
    {
        const UsbDevicePointer device = pluggedDevice(index);
        if (!device || index >= Count)
            return nullptr;
        ChipPointer present = chipOf(device.get());
        if (!present) {
            close(index);
            return openDevice(index, device.get());
        }
        return keep(index, std::move(present));
    }

    /// Closes the bridge that is open at the index and opens the one that is in its place now, if any.
    void reopen(uint32_t index)
    {
        ChipPointer present = chip(index);
        if (!present)
            return;
        const UsbDevicePointer device = bridgeInPlaceOf(present->device(), Chip::kFamily);
        present.reset();
        close(index);
        if (device)
            openDevice(index, device.get());
    }

    void close(uint32_t index)
    {
        ChipPointer closing; // released after the lock, since giving a bridge back takes its time
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (index < Count)
            closing.swap(m_chips[index]);
    }

    /// Runs a chip's operation on the bridge that is open at the index. Returns 1 on success, 0 when the
    /// operation failed or the index is not open.
    template<typename Operation>
    uint32_t run(uint32_t index, Operation operation)
    {
        const ChipPointer opened = chip(index);
        return opened && operation(*opened) ? 1 : 0;
    }

    /// Null when no bridge has that index now.
    static UsbDevicePointer pluggedDevice(uint32_t index)
    {
        std::vector<UsbDevicePointer> bridges = pluggedBridges(Chip::kFamily);
        return index < bridges.size() ? std::move(bridges[index]) : nullptr;
    }

private:
    ChipPointer openDevice(uint32_t index, libusb_device *device)
    {
        std::unique_ptr<UsbBridge> usb = UsbBridge::open(device, Chip::kFamily);
        if (!usb)
            return nullptr;
        ChipPointer opened = std::make_shared<Chip>(std::move(usb));
        return opened->start() ? keep(index, std::move(opened)) : nullptr;
    }

    /// Null when the device is not open.
    ChipPointer chipOf(libusb_device *device)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto isOfDevice = [device](const ChipPointer &chip) {
            return chip && chip->device() == device;
        };
        const auto found = std::find_if(m_chips.begin(), m_chips.end(), isOfDevice);
        return found != m_chips.end() ? *found : nullptr;
    }

    ChipPointer keep(uint32_t index, ChipPointer chip)
    {
        ChipPointer replaced = chip; // released after the lock
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_chips[index].swap(replaced);
        return chip;
    }

    std::mutex m_mutex; // guards m_chips
    std::array<ChipPointer, Count> m_chips;
};
