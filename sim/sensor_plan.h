#pragma once

#include "sim/SimSensor.h"

#include <memory>
#include <optional>

/// A sensor that is to be made: what it is and where it will be found.
struct SensorPlan
{
    uint8_t programId;
    uint8_t address;
    int channel = 0; ///< of the multiplexer in front of it; 0: none

    /// Reads "17@0x61": a program id of the catalogue and an address from 0x01 to 0x6F, each decimal or
    /// hexadecimal.
    static std::optional<SensorPlan> parse(const QString &text);
};

/// What the finger before the sensor does.
enum class FingerPlay {
    Sweep, ///< comes near, presses, wanders and goes away, over and over
    Press, ///< presses the middle straight and lets go, over and over
    Idle,  ///< is not there
};

std::shared_ptr<SimSensor> makeSensor(const SensorPlan &plan, double rateHz,
                                      FingerPlay play = FingerPlay::Sweep);

/// Now and then every kind of fault, in about one of twenty frames together. Sensors of one seed err
/// differently.
void letErr(SimSensor &sensor, uint32_t seed);
