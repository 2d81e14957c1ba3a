#pragma once

#include "link/providers/invalid_handle.h"

#include <QDebug>
#include <QVector>

#include <cstdint>

/// Status with which the bridge library gives notice that a bridge has been removed.
constexpr uint32_t kBridgeRemoved = 0;

/// What class_ch341 and class_ch347 remember alike about their bridges, and what both do with it.
struct BridgeState
{
    static constexpr uint8_t kClosed = 0xFF;

    uint16_t openedId = 0; ///< id of the bridge opened last; stays after close
    uint8_t openIndex = kClosed;
    QVector<uint16_t> deviceList; ///< ids found by the last scan

    bool isOpen() const { return openIndex != kClosed; }

    /// Position of the id in the list, -1 when it is not there. This position is also the device index.
    int8_t position(uint16_t id) const { return static_cast<int8_t>(deviceList.indexOf(id)); }
};

/// Opens the listed bridge of that id by openDevice(index), and gives it up by closeDevice(index) when that
/// fails. The index must be below indexCount. Returns the device index, or -1 after a log line that says what
/// is wrong.
template<typename OpenDevice, typename CloseDevice>
int8_t openListedBridge(const BridgeState &state, uint16_t id, int indexCount, OpenDevice openDevice,
                        CloseDevice closeDevice)
{
    const int8_t index = state.position(id);
    if (state.isOpen() || index < 0 || index >= indexCount) {
        qDebug("connect param err:%d,%d", state.isOpen() ? 1 : 0, index);
        return -1;
    }
    if (isInvalidHandle(openDevice(static_cast<uint32_t>(index)))) {
        closeDevice(static_cast<uint32_t>(index));
        qDebug("connect fail:%d, idx:%d", id, index);
        return -1;
    }
    return index;
}

/// Follows an open bridge after arrivals and removals: closes the link when its device has gone, and opens it
/// again when other bridges that came or went have moved its device to another index. The latter waits for
/// the latest list, since an index of an earlier one may by now be another bridge's.
template<typename Link>
void followOpenBridge(Link &link, const BridgeState &state, uint32_t status, bool isLatest = true)
{
    if (!state.isOpen())
        return;
    const uint16_t id = state.openedId;
    const int8_t position = state.position(id);
    if (position < 0 && status == kBridgeRemoved) {
        qDebug("disconnected:%d", id);
        link.close();
    }
    qDebug("openIdx:%d, idx:%d", state.openIndex, position);
    const bool hasMoved = position >= 0 && static_cast<uint8_t>(position) != state.openIndex;
    if (isLatest && state.isOpen() && hasMoved) {
        qDebug("restart:%d", id);
        link.close();
        link.open(id);
    }
}
