#pragma once

#include "link/bridge_state.h"
#include "link/providers/vendor_call.h"

#include <QObject>
#include <QVector>

#include <atomic>
#include <cstdint>

/// I2C clock of the CH341.
enum class ch341_iic_speed_te : uint8_t {
    Khz20 = 0,
    Khz100 = 1,
    Khz400 = 2,
    Khz750 = 3,
};

/// I2C bus behind a CH341 bridge. Belongs to the thread of its owner and blocks it for the time of a
/// transfer; the list of bridges comes for the first time 100 ms after construction.
///
/// The last instance made follows arrivals and removals of bridges; destroying any instance ends that for
/// all.
class class_ch341 : public QObject
{
    Q_OBJECT

public:
    explicit class_ch341(QObject *parent = nullptr);
    ~class_ch341() override;

    /// Opens the bridge of that id, which must be in the last list. Emits si_connected before it returns
    /// true.
    bool open(uint16_t id);
    /// Always 1. Emits si_disconnected when the link was open.
    uint8_t close();
    bool isOpen() const { return m_state.isOpen(); }

    /// Makes the list of bridge ids anew and returns their number.
    int scan();
    /// scan, then si_updateList, before it returns.
    void getScanSignal();

    /// Both take a 7-bit I2C address and return the length, or 0 on failure. A failed read may leave part of
    /// the buffer written.
    uint16_t write(uint8_t address, const uint8_t *data, uint16_t length);
    uint16_t read(uint8_t address, uint8_t *buffer, uint16_t length);

    /// Non-zero on success, 0 when closed or when there is no such speed.
    uint32_t setIICSpeed(ch341_iic_speed_te speed);

    /// Level of the output pin that is wired to the reset input of the multiplexer.
    void setInt(uint8_t level);
    /// 0 or 1, 255 when closed.
    uint8_t getInt();

    /// What the bridge library calls on arrival and removal, status 0 being a removal. May be entered on any
    /// thread. The bridges are listed there and then: when the owner has time for it, one that left may be
    /// back.
    static void TACTILE_VENDOR_CALL CH341_NOTIFY_ROUTINE(uint32_t status);

Q_SIGNALS:
    void si_connected();
    void si_disconnected();
    /// Never emitted.
    void si_connectTimeout();
    void si_updateList(QVector<uint16_t> ch341List);
    /// The library has given notice; may be emitted on any thread and is heard only by the instance itself,
    /// on its own.
    void bridgeNoticed(unsigned int status, QVector<uint16_t> ids);

private:
    void takeNotice(unsigned int status, const QVector<uint16_t> &ids);
    /// Follows arrivals and removals again where the end of another instance has ended that for all, and
    /// looks once for what came and went meanwhile.
    void keepNoticed();

    static std::atomic<class_ch341 *> s_notified;

    BridgeState m_state;
    std::atomic<int> m_noticesUnderway{0};
    ch341_iic_speed_te m_speed = ch341_iic_speed_te::Khz100;
};
