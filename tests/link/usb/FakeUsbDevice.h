#pragma once

#include "tests/link/usb/FakeUsbBus.h"

#include <atomic>
#include <deque>
#include <list>
#include <mutex>

/// What a device makes of its bulk traffic. Called on a thread of the fake bus.
class FakeUsbChip
{
public:
    virtual ~FakeUsbChip() = default;

    virtual uint16_t productId() const = 0;
    /// Device descriptor and configuration.
    virtual Bytes descriptors() const = 0;
    /// One transfer out has come; every answer is one packet.
    virtual void receive(const Bytes &transfer, std::deque<Bytes> &answers) = 0;
};

/// A device on the fake bus: answers what libusb asks the kernel, and lets a chip answer the rest.
class FakeUsbDevice
{
public:
    /// "1-2.3" is the device in port 3 of the hub in port 2 of bus 1. The chip must outlive the device, and
    /// whoever has the device open must close it first.
    FakeUsbDevice(FakeUsbBus &bus, const std::string &name, int address, FakeUsbChip &chip);
    ~FakeUsbDevice();
    FakeUsbDevice(const FakeUsbDevice &) = delete;
    FakeUsbDevice &operator=(const FakeUsbDevice &) = delete;

    void plug();
    /// Transfers that wait end at once, and nothing can be asked any more.
    void unplug();

    std::string node() const { return usbNode(m_address); }

    // Faults, to be set at any time.
    std::atomic<bool> isDeaf{false}; ///< nothing is ever answered
    std::atomic<bool> isCuredByReset{false};
    std::atomic<unsigned> haltedEndpoint{0}; ///< refuses every transfer until the halt is cleared
    std::atomic<bool> kernelOwns{false};     ///< a kernel driver holds the interface
    std::atomic<bool> reappears{false};      ///< after a reset it hears again, but only whoever opens it anew

    // What has happened.
    std::atomic<int> claimedInterface{-1};
    std::atomic<int> resets{0};
    std::atomic<int> sent{0};    ///< transfers that came out of the host, also those that nobody heard
    std::atomic<int> waiting{0}; ///< transfers that wait for an answer

private:
    struct Transfer
    {
        UMockdevIoctlData *request = nullptr; ///< the usbdevfs_urb of the client
        UMockdevIoctlData *buffer = nullptr;
        bool isBulkIn = false;
        int length = 0;
        int status = 0;
        int actual = 0;
        Bytes answer;
        bool isDone = false;
    };

    static gboolean onIoctl(UMockdevIoctlBase *handler, UMockdevIoctlClient *client, gpointer device);
    int answer(unsigned long request, UMockdevIoctlData *argument);
    static int tellCapabilities(UMockdevIoctlData *argument);
    int claim(unsigned interfaceNumber);
    int submit(UMockdevIoctlData *argument);
    int reap(UMockdevIoctlData *argument);
    int discard(UMockdevIoctlData *argument);
    void deliverAnswers();
    void makeNode();
    void setNodeReady(bool ready);
    static void forget(Transfer &transfer);

    FakeUsbBus &m_bus;
    std::string m_name;
    int m_address;
    FakeUsbChip &m_chip;
    UMockdevIoctlBase *m_handler;

    std::mutex m_mutex; // guards the members below
    std::list<Transfer> m_transfers;
    std::deque<Bytes> m_answers;
    bool m_isGone = true;
    bool m_hasReappeared = false;
    int m_fifo = -1;
    bool m_isReady = false;
};
