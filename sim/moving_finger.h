#pragma once

#include "sim/SimSensor.h"

/// A finger that comes near, presses, wanders over the pad while its shear turns, and goes away again, over
/// and over. Every channel, force and proximity of the model takes part. The phase, in seconds, lets several
/// fingers move apart.
SimMotion movingFinger(double phase);

/// A finger that presses the middle of the pad straight, in four seconds from nothing to full force and back.
SimMotion pressingFinger(double phase);
