#include "views/class_ydds.h"

#include <QEvent>
#include <QPainter>

class_ydds::class_ydds(QWidget *parent)
    : QLabel(parent)
{
    setStyleSheet(QStringLiteral("QLabel { border: none; }"));
}

bool class_ydds::event(QEvent *event)
{
    const bool handled = QLabel::event(event);
    // The style sheet paints no background, so the style need not be asked for one at every paint.
    if (event->type() == QEvent::Polish)
        setAttribute(Qt::WA_StyledBackground, false);
    return handled;
}

void class_ydds::paintEvent(QPaintEvent *event)
{
    // A label without a text has nothing to paint.
    if (!text().isEmpty())
        QLabel::paintEvent(event);
    QPainter painter(this);
    paintGauge(painter, lookOf(*this));
}

void class_ydds::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
}
