#pragma once

#include "sim/SimCh341.h"
#include "sim/SimCh347.h"
#include "sim/SimSerialBus.h"
#include "sim/SimUsb.h"
#include "soak/Chance.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

/// The bench of a soak and all that goes wrong with it: a CH341 and a CH347 with fourteen sensors each, a
/// serial line with six. All sensors err now and then; cables are pulled and plugged, sensors come and go,
/// transfers fail and the disk is full for a while, on a thread of its own.
class SoakWorld
{
public:
    explicit SoakWorld(unsigned seed);
    ~SoakWorld() { setTrouble(false); }
    SoakWorld(const SoakWorld &) = delete;
    SoakWorld &operator=(const SoakWorld &) = delete;

    /// Begins the trouble, or ends it: then everything is plugged in again and there is room on the disk. The
    /// sensors go on erring.
    void setTrouble(bool on);

    int pulls() const { return m_pulls; }
    int disksFilled() const { return m_disksFilled; }

    static constexpr int kCh341Id = 5002;
    static constexpr int kCh347Id = 7001;

private:
    void run();
    void act();
    void pullAndPlug();
    void exchangeGuest();
    void disturbTransfers();
    void fillDisk();
    void rest(std::chrono::milliseconds time);
    SimBridge &anyBridge();
    void restore();
    void plugBridges();

    Chance m_chance;
    SimSerialBus m_line;
    std::shared_ptr<SimCh341> m_ch341;
    std::shared_ptr<SimCh347> m_ch347;
    SimUsb m_usb;
    std::vector<std::shared_ptr<SimSensor>> m_guests; ///< sensors that come and go
    std::atomic<int> m_pulls{0};
    std::atomic<int> m_disksFilled{0};
    std::atomic<bool> m_trouble{false};
    std::thread m_thread;
};
