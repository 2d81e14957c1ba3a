#pragma once

#include <QByteArray>

#include <cstdint>

/// Values of cmd_ts::rspLen that are no length.
constexpr uint16_t kNoResponse = 0;           ///< write only
constexpr uint16_t kUnknownResponse = 0xFFFF; ///< the frame itself tells where it ends

/// One queued command.
struct cmd_ts
{
    uint8_t infIdx = 0;  ///< bus entry of the target sensor
    uint8_t addr = 0;    ///< bus address of the target sensor
    QByteArray cmd;      ///< the frame to write, whole
    uint16_t rspLen = 0; ///< exact response length in bytes, kNoResponse or kUnknownResponse
};
