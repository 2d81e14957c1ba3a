#pragma once

#include "protocol/finger_info.h"

#include <QByteArray>

#include <cstdint>
#include <vector>

/// What a sensor keeps without power. Channel lists have the model's channel count, calibration curves one
/// entry a force channel and one a three-dimensional force, each with the model's number of points.
struct SimSettings
{
    SimSettings(const finger_info_ts &model, uint8_t busAddress);

    /// Everything but address and serial number becomes what it was when the sensor was made.
    void restoreFactory(const finger_info_ts &model);

    uint8_t address;
    QByteArray serialNumber;
    QByteArray text;

    uint8_t sendType;
    uint8_t measuringMode;
    uint8_t autoDacAtPowerUp;
    uint8_t startPosition;

    std::vector<uint32_t> thresholds;
    std::vector<uint32_t> touchTimeoutsMs;
    std::vector<uint8_t> excitations;
    std::vector<uint8_t> ranges;
    std::vector<uint8_t> filterDepths;
    std::vector<uint8_t> filterLimits;
    std::vector<float> filterFactors;
    std::vector<uint8_t> enabled;

    uint32_t pressReleaseMaximum;
    uint8_t pressReleaseScale;
    uint32_t proximityReleaseMaximum;
    uint8_t proximityReleaseScale;
    uint8_t proximityClearsTouch;
    uint32_t proximityClearDelayMs;
    float temperatureCalibration;

    std::vector<float> forcePoints; ///< newtons, ascending
    std::vector<std::vector<uint32_t>> curves;
    std::vector<uint32_t> normalCurve;
};
