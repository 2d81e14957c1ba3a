#pragma once

#include "views/gauge_painting.h"

#include <QLabel>

/// What both gauge classes are: a label, whose text if any lies below the disc, and the look to write to.
class GaugeLabel : public QLabel, public GaugeLook
{
    Q_OBJECT

public:
    explicit GaugeLabel(QWidget *parent);

    /// A gauge takes the size that it is given, whatever its text.
    QSize sizeHint() const override { return {}; }
    QSize minimumSizeHint() const override { return {}; }

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override { QLabel::resizeEvent(event); }

private:
    bool hasOwnSheetOnly() const;

    bool m_ownSheetOnly = true;
};
