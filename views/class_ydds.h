#pragma once

#include "views/GaugeLabel.h"

/// The gauge as tile of a sensorForm. Draws as ydds does.
class class_ydds : public GaugeLabel
{
    Q_OBJECT

public:
    explicit class_ydds(QWidget *parent = nullptr)
        : GaugeLabel(parent)
    {}
};
