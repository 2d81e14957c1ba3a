#include "views/ydds.h"

#include <QEvent>
#include <QPainter>

ydds::ydds(QWidget *parent)
    : QLabel(parent)
{
    setStyleSheet(QStringLiteral("QLabel { border: none; }"));
}

bool ydds::event(QEvent *event)
{
    const bool handled = QLabel::event(event);
    // The style sheet paints no background, so the style need not be asked for one at every paint.
    if (event->type() == QEvent::Polish)
        setAttribute(Qt::WA_StyledBackground, false);
    return handled;
}

void ydds::paintEvent(QPaintEvent *event)
{
    // A label without a text has nothing to paint.
    if (!text().isEmpty())
        QLabel::paintEvent(event);
    QPainter painter(this);
    paintGauge(painter, lookOf(*this));
}

void ydds::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
}
