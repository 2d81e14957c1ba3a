#pragma once

#include "sim/SimSettings.h"

#include <QByteArray>

#include <chrono>
#include <cstdint>
#include <optional>

/// What a command may see and change of the sensor that carries it out.
struct SimCommandContext
{
    const finger_info_ts &model;
    SimSettings &settings;
    uint8_t sensorStatus;
    double sampleRateHz;
    std::chrono::seconds upTime;
};

/// Carries out a whole request frame and returns the payload of the answer, or nothing when the sensor does
/// not know the command and keeps silent.
std::optional<QByteArray> simExecute(const SimCommandContext &context, const QByteArray &request);

/// Answer payload that tells a single byte, the fourth of five: success (0) or the reason of a refusal.
QByteArray simSinglePayload(uint8_t value);
/// True for the commands whose answer reports success or a refusal.
bool simReportsStatus(uint8_t command);

/// Lengths that a request frame of a command may have: eleven bytes but for the few that carry more.
struct SimRequestLengths
{
    int shortest;
    int longest;
};
SimRequestLengths simRequestLengths(uint8_t command);
