#pragma once

#include "views/gauge_painting.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QPainter>

/// What both gauge classes do. `Gauge` is the class that derives from this one and holds the fields; its
/// label text, if any, lies below the disc.
template<typename Gauge>
class GaugeLabel : public QLabel
{
public:
    explicit GaugeLabel(QWidget *parent)
        : QLabel(parent)
    {
        setStyleSheet(ownSheet());
    }

    /// A gauge takes the size that it is given, whatever its text.
    QSize sizeHint() const override { return {}; }
    QSize minimumSizeHint() const override { return {}; }

protected:
    bool event(QEvent *event) override
    {
        const bool handled = QLabel::event(event);
        const QEvent::Type type = event->type();
        if (type == QEvent::Polish || type == QEvent::StyleChange || type == QEvent::ParentChange) {
            m_ownSheetOnly = hasOwnSheetOnly();
            // It paints no background, so the style need not be asked for one at every paint.
            if (m_ownSheetOnly)
                setAttribute(Qt::WA_StyledBackground, false);
        }
        return handled;
    }

    void paintEvent(QPaintEvent *event) override
    {
        // An empty label has nothing to paint.
        if (!m_ownSheetOnly || !text().isEmpty() || !pixmap(Qt::ReturnByValue).isNull())
            QLabel::paintEvent(event);
        QPainter painter(this);
        paintGauge(painter, look(static_cast<const Gauge &>(*this)));
    }

    void resizeEvent(QResizeEvent *event) override { QLabel::resizeEvent(event); }

private:
    static QString ownSheet() { return QStringLiteral("QLabel { border: none; }"); }

    bool hasOwnSheetOnly() const
    {
        bool only = styleSheet() == ownSheet() && qApp->styleSheet().isEmpty();
        for (const QWidget *each = parentWidget(); only && each != nullptr; each = each->parentWidget())
            only = each->styleSheet().isEmpty();
        return only;
    }

    static GaugeLook look(const Gauge &gauge)
    {
        return {gauge.width(), gauge.height(),  gauge.direction, gauge.arrowScale, gauge.arrowPen,
                gauge.discPen, gauge.discBrush, gauge.halo,      gauge.haloBrush,  gauge.arrowExtraWidth};
    }

    bool m_ownSheetOnly = true;
};
