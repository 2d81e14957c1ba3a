#include "views/GaugeLabel.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>

namespace {

QString ownSheet()
{
    return QStringLiteral("QLabel { border: none; }");
}

} // namespace

GaugeLabel::GaugeLabel(QWidget *parent)
    : QLabel(parent)
{
    setStyleSheet(ownSheet());
}

bool GaugeLabel::event(QEvent *event)
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

void GaugeLabel::paintEvent(QPaintEvent *event)
{
    // An empty label has nothing to paint.
    if (!m_ownSheetOnly || !text().isEmpty() || !pixmap(Qt::ReturnByValue).isNull())
        QLabel::paintEvent(event);
    QPainter painter(this);
    paintGauge(painter, width(), height(), *this);
}

bool GaugeLabel::hasOwnSheetOnly() const
{
    bool only = styleSheet() == ownSheet() && qApp->styleSheet().isEmpty();
    for (const QWidget *each = parentWidget(); only && each != nullptr; each = each->parentWidget())
        only = each->styleSheet().isEmpty();
    return only;
}
