#pragma once

#include "protocol/frames.h"

#include <QObject>
#include <QString>

#include <array>
#include <cstdint>

/// One row of the command catalogue.
struct sensor_cmd_ts
{
    uint8_t cmd;
    uint8_t rspLen; ///< whole response in bytes; 0 when the catalogue fixes none
    QString name;   ///< for logs and messages, never translated
};

/// The command catalogue. No command stands in it twice.
extern const std::array<sensor_cmd_ts, 63> cmds;

/// The command catalogue and the builders of request frames. Everything is static; an instance holds nothing.
///
/// Every builder fills the kRequestLength bytes at `buf`, or nothing when `buf` is null, and returns the
/// length of the response by the catalogue. Values of more than one byte go out low byte first. The length
/// finders `getPackLen` and `getSensorPackLen` and what all frames share are the free functions of
/// protocol/frames.h.
class class_sensorCmd : public QObject
{
    Q_OBJECT

public:
    explicit class_sensorCmd(QObject *parent = nullptr);

    /// Length of the response in bytes; 0 for a command that is not in the catalogue or has no fixed length.
    static uint8_t getRspLen(uint8_t cmd);
    /// Name of the command; a null string when it is not in the catalogue.
    static QString getStr(uint8_t cmd);

    static uint8_t SC_ChannelResetSingle(uint8_t addr, uint8_t ch, uint8_t *buf);
    static uint8_t SC_ChannelResetAll(uint8_t addr, uint8_t *buf);
    static uint8_t SC_GetVersion(uint8_t addr, uint8_t *buf);
    static uint8_t SC_Reset(uint8_t addr, uint8_t *buf);
    static uint8_t SC_ChannelEnable(uint8_t addr, uint8_t ch, uint8_t en, uint16_t mask, uint8_t *buf);
    static uint8_t SC_GetCali(uint8_t addr, uint8_t *buf);
    static uint8_t SC_Factor(uint8_t addr, uint8_t *buf);
    static uint8_t SC_SetCali(uint8_t addr, uint8_t idx, uint32_t value, uint8_t *buf);
    static uint8_t SC_SetYddsUnif(uint8_t addr, uint8_t *buf);
    static uint8_t SC_SetSendType(uint8_t addr, uint8_t type, uint8_t *buf);
    static uint8_t SC_GetAddr(uint8_t addr, uint8_t *buf);
    static uint8_t SC_GetType(uint8_t addr, uint8_t *buf);
    static uint8_t SC_SetAddr(uint8_t addr, uint8_t newAddr, uint8_t *buf);
    static uint8_t SC_AutoDac(uint8_t addr, uint8_t *buf);
    static uint8_t SC_AutoThreshold(uint8_t addr, uint8_t ch, uint32_t value, uint8_t *buf);
    static uint8_t SC_GetAutoThreshold(uint8_t addr, uint8_t *buf);
    /// Only the low 24 bits of `value` go out.
    static uint8_t SC_SetChannelCali(uint8_t addr, uint8_t ch, uint8_t idx, uint32_t value, uint8_t *buf);
    static uint8_t SC_SetChannelThreshold(uint8_t addr, uint8_t ch, uint32_t value, uint8_t *buf);
    static uint8_t SC_GetChannelCali(uint8_t addr, uint8_t ch, uint8_t *buf);
    static uint8_t SC_GetSensorChannel(uint8_t addr, uint8_t *buf);
    static uint8_t SC_SetCapOffset(uint8_t addr, uint8_t offset, uint8_t *buf);
    static uint8_t SC_GetErrCode(uint8_t addr, uint8_t *buf);
};
