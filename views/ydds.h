#pragma once

#include "views/GaugeLabel.h"

/// Round gauge of one force point: a disc whose colour stands for the normal force, and an arrow for the
/// tangential force. Views write the fields and call update(); the label text, if any, lies below the disc.
class ydds : public GaugeLabel
{
    Q_OBJECT

public:
    explicit ydds(QWidget *parent = nullptr)
        : GaugeLabel(parent)
    {}
};
