#include "protocol/class_sensorCmd.h"

#include "protocol/command.h"
#include "protocol/payloads.h"

#include <algorithm>

namespace {

const sensor_cmd_ts *findCommand(uint8_t cmd)
{
    const auto *row = std::find_if(cmds.cbegin(), cmds.cend(),
                                   [cmd](const sensor_cmd_ts &each) { return each.cmd == cmd; });
    return row == cmds.cend() ? nullptr : row;
}

/// Byte `index` of a value that goes out low byte first.
uint8_t byteOf(uint32_t value, int index)
{
    return static_cast<uint8_t>((value >> (8 * index)) & 0xFF);
}

uint8_t build(uint8_t addr, Command command, const RequestPayload &payload, uint8_t *buf)
{
    const auto cmd = static_cast<uint8_t>(command);
    if (buf != nullptr) {
        const QByteArray frame = requestFrame(addr, cmd, payload);
        std::copy_n(frameBytes(frame), kRequestLength, buf);
    }
    return class_sensorCmd::getRspLen(cmd);
}

uint8_t build(uint8_t addr, Command command, uint8_t *buf)
{
    return build(addr, command, {}, buf);
}

} // namespace

class_sensorCmd::class_sensorCmd(QObject *parent)
    : QObject(parent)
{}

uint8_t class_sensorCmd::getRspLen(uint8_t cmd)
{
    const sensor_cmd_ts *row = findCommand(cmd);
    return row == nullptr ? uint8_t{0} : row->rspLen;
}

QString class_sensorCmd::getStr(uint8_t cmd)
{
    const sensor_cmd_ts *row = findCommand(cmd);
    return row == nullptr ? QString() : row->name;
}

uint8_t class_sensorCmd::SC_ChannelResetSingle(uint8_t addr, uint8_t ch, uint8_t *buf)
{
    return build(addr, Command::ResetChannel, {ch}, buf);
}

uint8_t class_sensorCmd::SC_ChannelResetAll(uint8_t addr, uint8_t *buf)
{
    return build(addr, Command::ResetAllChannels, buf);
}

uint8_t class_sensorCmd::SC_GetVersion(uint8_t addr, uint8_t *buf)
{
    return build(addr, Command::GetVersion, buf);
}

uint8_t class_sensorCmd::SC_Reset(uint8_t addr, uint8_t *buf)
{
    return build(addr, Command::Reset, buf);
}

uint8_t class_sensorCmd::SC_ChannelEnable(uint8_t addr, uint8_t ch, uint8_t en, uint16_t mask, uint8_t *buf)
{
    // The firmware takes the upper byte of the mask from bit 7 on: bit 7 goes out twice.
    const auto upper = static_cast<uint8_t>((mask >> 7) & 0xFF);
    return build(addr, Command::EnableChannel, {ch, byteOf(mask, 0), upper, en}, buf);
}

uint8_t class_sensorCmd::SC_GetCali(uint8_t addr, uint8_t *buf)
{
    return build(addr, Command{0x7D}, buf);
}

uint8_t class_sensorCmd::SC_Factor(uint8_t addr, uint8_t *buf)
{
    return build(addr, Command::RestoreFactory, buf);
}

uint8_t class_sensorCmd::SC_SetCali(uint8_t addr, uint8_t idx, uint32_t value, uint8_t *buf)
{
    return build(addr, Command{0x78}, payloadByteAndWord(idx, value), buf);
}

uint8_t class_sensorCmd::SC_SetYddsUnif(uint8_t addr, uint8_t *buf)
{
    return build(addr, Command{0x7A}, buf);
}

uint8_t class_sensorCmd::SC_SetSendType(uint8_t addr, uint8_t type, uint8_t *buf)
{
    return build(addr, Command::SetSendType, payloadByte7(type), buf);
}

uint8_t class_sensorCmd::SC_GetAddr(uint8_t addr, uint8_t *buf)
{
    return build(addr, Command::GetIicAddress, buf);
}

uint8_t class_sensorCmd::SC_GetType(uint8_t addr, uint8_t *buf)
{
    return build(addr, Command{0xA2}, buf);
}

uint8_t class_sensorCmd::SC_SetAddr(uint8_t addr, uint8_t newAddr, uint8_t *buf)
{
    return build(addr, Command::SetIicAddress, payloadByte7(newAddr), buf);
}

uint8_t class_sensorCmd::SC_AutoDac(uint8_t addr, uint8_t *buf)
{
    return build(addr, Command::AutoDac, buf);
}

uint8_t class_sensorCmd::SC_AutoThreshold(uint8_t addr, uint8_t ch, uint32_t value, uint8_t *buf)
{
    return build(addr, Command::AutoThreshold, payloadByteAndWord(ch, value), buf);
}

uint8_t class_sensorCmd::SC_GetAutoThreshold(uint8_t addr, uint8_t *buf)
{
    return build(addr, Command::GetThreshold, buf);
}

uint8_t class_sensorCmd::SC_SetChannelCali(uint8_t addr, uint8_t ch, uint8_t idx, uint32_t value,
                                           uint8_t *buf)
{
    return build(addr, Command::SetCalibrationPoint,
                 {ch, idx, byteOf(value, 0), byteOf(value, 1), byteOf(value, 2)}, buf);
}

uint8_t class_sensorCmd::SC_SetChannelThreshold(uint8_t addr, uint8_t ch, uint32_t value, uint8_t *buf)
{
    return build(addr, Command::SetChannelThreshold, payloadByteAndWord(ch, value), buf);
}

uint8_t class_sensorCmd::SC_GetChannelCali(uint8_t addr, uint8_t ch, uint8_t *buf)
{
    return build(addr, Command::GetCalibration, {ch}, buf);
}

uint8_t class_sensorCmd::SC_GetSensorChannel(uint8_t addr, uint8_t *buf)
{
    return build(addr, Command::GetSensorNum, buf);
}

uint8_t class_sensorCmd::SC_SetCapOffset(uint8_t addr, uint8_t offset, uint8_t *buf)
{
    return build(addr, Command{0x73}, payloadByte7(offset), buf);
}

uint8_t class_sensorCmd::SC_GetErrCode(uint8_t addr, uint8_t *buf)
{
    return build(addr, Command{0x64}, buf);
}
