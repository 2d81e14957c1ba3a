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

/// The model catalogue. The order counts, for the first row that fits wins every search: some ids stand twice, and many
/// models share a frame length.
// clang-format off
inline constexpr finger_info_ts finger_infos[] = {
    // prg, packLen, chNum, forceChNum, yddsNum, sProxNum, mProxNum, chBytes, yddsFmt, hasStatus, caliNum, range, name, model
    {0x02,  62,  8,  7,  1, 1, 0, 4, 2, 0, 22, 20.0F, "基型手指", "KV-N1"},
    {0x13,  62,  8,  7,  1, 1, 0, 4, 2, 0, 21, 20.0F, "基型手指2", "KV-N1"},
    {0x1E,  62,  8,  7,  1, 1, 0, 4, 2, 0, 21, 20.0F, "岚峰-基型指尖", "KV-J1"},
    {0x71,  62,  8,  7,  1, 1, 0, 4, 2, 0, 21, 20.0F, "岚峰-基型指尖", "KV-J1"},
    {0x11,  78, 16, 13,  2, 2, 1, 3, 4, 1, 51, 50.0F, "双指-大包", "KV-W1"},
    {0x12, 180, 52, 51,  2, 1, 0, 3, 4, 1, 16, 75.0F, "双指-阵列", "KV-W2"},
    {0x14,  45,  7,  6,  2, 1, 0, 3, 4, 1, 26, 25.0F, "云岫-大拇指(量)", "KV-R1-THUMB"},
    {0x15,  69, 11,  8,  3, 2, 1, 3, 4, 1, 26, 25.0F, "云岫-食指(量)", "KV-R1-INDEX"},
    {0x16,  69, 11,  8,  3, 2, 1, 3, 4, 1, 26, 25.0F, "云岫-中指(量)", "KV-R1-MIDDLE"},
    {0x17,  69, 11,  8,  3, 2, 1, 3, 4, 1, 26, 25.0F, "云岫-无名指(量)", "KV-R1-RING"},
    {0x18,  45,  7,  6,  2, 1, 0, 3, 4, 1, 26, 25.0F, "云岫-小拇指(量)", "KV-R1-LITTLE"},
    {0x19,  42,  8,  7,  1, 1, 0, 3, 4, 1, 22, 20.0F, "基型指尖头部加强带指甲", "KV-N3+"},
    {0x1A,  72, 14, 11,  2, 2, 1, 3, 4, 1, 22, 20.0F, "基型指尖指腹带指甲", "KV-N4+"},
    {0x1B,  66, 16, 15,  1, 1, 0, 3, 4, 1, 21, 20.0F, "基型指尖点阵", "KV-N1"},
    {0x1C,  36,  6,  5,  1, 1, 0, 3, 4, 1, 27, 25.0F, "基型指尖头部加强", "KV-N3"},
    {0x1D,  66, 12,  9,  2, 2, 1, 3, 4, 1, 27, 25.0F, "基型指尖指腹", "KV-N4"},
    {0x1F,  27,  4,  4,  1, 0, 0, 3, 4, 1, 12, 50.0F, "推拿头", "KV-H1"},
    {0x22,  57, 12, 12,  2, 0, 0, 3, 4, 1, 12, 50.0F, "推拿头V11", "KV-H2"},
    {0x25,  36,  6,  5,  1, 1, 0, 3, 4, 1, 21, 20.0F, "星桥-大拇指", "KV-S1-THUMB"},
    {0x26,  60, 11,  9,  2, 1, 1, 3, 4, 1, 21, 20.0F, "星桥-中指", "KV-S1-MIDDLE"},
    {0x27,  36,  6,  5,  1, 1, 0, 3, 4, 1, 21, 20.0F, "星桥-小拇指", "KV-S1-LITTLE"},
    {0x28,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "岚峰-指尖", "KV-J1-TIP"},
    {0x29,  39,  7,  6,  1, 1, 0, 3, 4, 1, 21, 20.0F, "岚峰-指腹", "KV-J1-PAD"},
    {0x2A,  66, 12, 11,  3, 1, 0, 3, 4, 1, 31, 6.25F, "岚峰-手掌", "KV-J2"},
    {0x2B, 189, 53, 50,  2, 2, 1, 3, 4, 1, 17, 75.0F, "双指-阵列", "KV-W2"},
    {0x2C,  60, 14, 13,  1, 1, 0, 3, 4, 1, 50,  3.8F, "基型指尖点阵", "KV-N1"},
    {0x2D, 150, 16, 15, 15, 1, 0, 3, 4, 1, 21, 25.0F, "基型指尖点阵", "KV-N1"},
    {0x2E,  45,  7,  6,  2, 1, 0, 3, 4, 1, 31, 30.0F, "松涛", "KV-U1"},
    {0x2F,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "墨林-大拇指", "KV-V1-THUMB"},
    {0x30,  66, 12,  9,  2, 2, 1, 3, 4, 1, 31, 30.0F, "墨林-中指", "KV-V1-MIDDLE"},
    {0x31,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "墨林-小拇指", "KV-V1-LITTLE"},
    {0x32,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x34,  66, 12,  9,  2, 2, 1, 3, 4, 1, 31, 30.0F, "基型-中指", "KV-N5-MIDDLE"},
    {0x36,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "基型-小拇指", "KV-N5-LITTLE"},
    {0x6C,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x63,  66, 12,  9,  2, 2, 1, 3, 4, 1, 31, 30.0F, "基型-中指", "KV-N5-MIDDLE"},
    {0x64,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "基型-小拇指", "KV-N5-LITTLE"},
    {0x37,  96, 26, 25,  1, 1, 0, 3, 4, 1, 17,  3.0F, "双指点阵-左", "KV-W2-L"},
    {0x38,  96, 26, 25,  1, 1, 0, 3, 4, 1, 17,  3.0F, "双指点阵-右", "KV-W2-R"},
    {0x39,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "青川-大拇指", "KV-X1"},
    {0x3A,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "青川-四指", "KV-X2"},
    {0x3B,  75, 13, 12,  4, 1, 0, 3, 4, 1, 31, 30.0F, "Q", "KV-N2"},
    {0x3C,  39,  7,  6,  1, 1, 0, 3, 4, 1, 26, 25.0F, "Q", "KV-N2"},
    {0x3D,  69, 11,  8,  3, 2, 1, 3, 4, 1, 26, 25.0F, "云岫-食指(量)", "KV-R1-INDEX"},
    {0x3E,  69, 11,  8,  3, 2, 1, 3, 4, 1, 26, 25.0F, "云岫-无名指(量)", "KV-R1-RING"},
    {0x3F,  45,  7,  6,  2, 1, 0, 3, 4, 1, 26, 25.0F, "云岫-小拇指(量)", "KV-R1-LITTLE"},
    {0x40,  36,  6,  5,  1, 1, 0, 3, 4, 1, 26, 25.0F, "Q", "KV-N2"},
    {0x41,  36,  6,  5,  1, 1, 0, 3, 4, 1, 26, 25.0F, "Q", "KV-N2"},
    {0x42,  36,  6,  5,  1, 1, 0, 3, 4, 1, 26, 25.0F, "Q", "KV-N2"},
    {0x43,  45,  7,  6,  2, 1, 0, 3, 4, 1, 26, 25.0F, "Q", "KV-N2"},
    {0x44,  45,  7,  6,  2, 1, 0, 3, 4, 1, 26, 25.0F, "Q", "KV-N2"},
    {0x45,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "Q", "KV-N2"},
    {0x46,  45,  7,  6,  2, 1, 0, 3, 4, 1, 21, 20.0F, "Q", "KV-N2"},
    {0x4B,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x4C,  69, 13, 12,  3, 1, 0, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x50,  45,  7,  6,  2, 1, 0, 3, 4, 1, 26, 25.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x51,  51, 11, 10,  1, 1, 0, 3, 4, 1, 26, 25.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x52,  51, 11, 10,  1, 1, 0, 3, 4, 1, 26, 25.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x53,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x54,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x55,  63, 13, 10,  1, 2, 1, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x56,  51, 11, 10,  1, 1, 0, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x57,  51, 11, 10,  1, 1, 0, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x58,  63, 13, 10,  1, 2, 1, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x5B,  36,  6,  5,  1, 1, 0, 3, 4, 1, 26, 25.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x5C,  36,  6,  5,  1, 1, 0, 3, 4, 1, 26, 25.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x5D,  36,  6,  5,  1, 1, 0, 3, 4, 1, 26, 25.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x5E,  36,  6,  5,  1, 1, 0, 3, 4, 1, 26, 25.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x5F,  33,  5,  4,  1, 1, 0, 3, 4, 1, 26, 25.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x60,  57, 13, 12,  1, 1, 0, 3, 4, 1, 30, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x61,  69, 13, 12,  3, 1, 0, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x62,  42,  8,  7,  1, 1, 0, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x63,  66, 12,  9,  2, 2, 1, 3, 4, 1, 31, 30.0F, "基型-中指", "KV-N5-MIDDLE"},
    {0x64,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "基型-小拇指", "KV-N5-LITTLE"},
    {0x6C,  36,  6,  5,  1, 1, 0, 3, 4, 1, 31, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
    {0x6E,  57, 13, 12,  1, 1, 0, 3, 4, 1, 30, 30.0F, "基型-大拇指", "KV-N5-THUMB"},
};
// clang-format on
