#pragma once

#include "views/gauge_painting.h"

#include <QLabel>

#include <cstdint>

/// Round gauge of one force point: a disc whose colour stands for the normal force, and an arrow for the tangential
/// force. Views write the fields and call update(); the label text, if any, lies below the disc.
class ydds : public QLabel
{
    Q_OBJECT

public:
    explicit ydds(QWidget *parent = nullptr);

    uint16_t direction = kNoArrow; ///< degrees clockwise from up
    float arrowScale = 0.0F;       ///< 0.0 to 1.0
    QPen arrowPen{Qt::black, 2};
    QPen discPen{Qt::black, 2}; ///< drawn in the disc's colour and one pixel wide, whatever stands here
    QBrush discBrush{Qt::white};
    bool halo = false;
    QBrush haloBrush;
    uint16_t arrowExtraWidth = 0;

    /// A gauge takes the size that it is given, whatever its text.
    QSize sizeHint() const override { return {}; }
    QSize minimumSizeHint() const override { return {}; }

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
};
