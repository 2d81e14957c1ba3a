#pragma once

#include <QMetaType>

#include <cstdint>

/// One model of sensor: how long its sample frame is and what each byte of it means.
struct finger_info_ts
{
    uint8_t prg = 0;             ///< program id that the sensor reports
    uint16_t packLen = 0;        ///< whole sample frame in bytes, header and sum included
    uint16_t chNum = 0;          ///< channel values in the frame, proximity channels included
    uint16_t forceChNum = 0;     ///< how many of the first channels carry force
    uint16_t yddsNum = 0;        ///< three-dimensional force blocks
    uint16_t sProxNum = 0;       ///< self-capacitance proximity channels
    uint16_t mProxNum = 0;       ///< mutual-capacitance proximity channels
    uint8_t chBytes = 0;         ///< bytes a channel value has: 3 or 4
    uint8_t yddsFmt = 0;         ///< 2, 3, 4 or 5: blocks of 22, 4, 6 or 10 bytes
    uint8_t hasStatus = 0;       ///< 1 when a status byte stands before the sum
    uint8_t caliNum = 0;         ///< points of the calibration list
    float range = 0;             ///< full scale of the force display in newtons
    const char *name = nullptr;  ///< UTF-8 label for logs and messages; not unique
    const char *model = nullptr; ///< UTF-8 model code; not unique
};
Q_DECLARE_METATYPE(finger_info_ts)

/// First row of a program id, or null.
const finger_info_ts *findFingerInfoByPrg(uint8_t prg);
/// First row of a sample frame length in bytes, or null.
const finger_info_ts *findFingerInfoByPackLen(int packLen);

/// The model catalogue. The order counts, for the first row that fits wins every search: some ids stand
/// twice, and many models share a frame length.
constexpr int kFingerInfoCount = 76;
extern const finger_info_ts finger_infos[kFingerInfoCount];
