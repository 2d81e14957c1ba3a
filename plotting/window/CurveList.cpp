#include "plotting/window/CurveList.h"

#include "plotting/SampleStore.h"
#include "plotting/window/CurvePlot.h"
#include "plotting/window/curve_colours.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QPixmap>

#include <cmath>

namespace {

enum Column { Name, Value, ColumnCount };

QIcon swatch(const QColor &colour)
{
    QPixmap pixmap(14, 4);
    pixmap.fill(colour);
    return pixmap;
}

} // namespace

CurveList::CurveList(CurvePlot *plot, QWidget *parent)
    : QTreeWidget(parent)
    , m_plot(plot)
{
    setColumnCount(ColumnCount);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setSelectionMode(NoSelection);
    setFocusPolicy(Qt::TabFocus);
    setFrameShape(NoFrame);
    setIconSize({14, 4});
    setToolTip(tr("Click a box to hide or show its curve, the right button for all"));
    header()->hide();
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(Name, QHeaderView::Stretch);
    header()->setSectionResizeMode(Value, QHeaderView::ResizeToContents);
    connect(this, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem *item, int column) {
        const int index = indexOfTopLevelItem(item);
        const bool shown = item->checkState(Name) == Qt::Checked;
        if (column != Name || shown == m_plot->isCurveShown(index))
            return;
        m_plot->setCurveShown(index, shown);
        Q_EMIT curveToggled();
    });
}

void CurveList::rebuild()
{
    const QSignalBlocker blocker(this);
    clear();
    for (int i = 0; i < m_plot->sources().size(); ++i) {
        auto *item = new QTreeWidgetItem(this, {m_plot->sources().at(i).name});
        item->setIcon(Name, swatch(curveColour(i)));
        item->setTextAlignment(Value, Qt::AlignRight);
        item->setCheckState(Name, Qt::Checked);
    }
}

void CurveList::refreshValues()
{
    const QSignalBlocker blocker(this);
    for (int i = 0; i < topLevelItemCount(); ++i) {
        const CurveSource &source = m_plot->sources().at(i);
        const int last = source.store->size() - 1;
        const double value = last < 0 ? std::nan("") : source.store->value(last, source.column);
        const QString text = std::isnan(value) ? QStringLiteral("–") : QString::number(value, 'g', 7);
        if (topLevelItem(i)->text(Value) != text)
            topLevelItem(i)->setText(Value, text);
    }
    // The blocked signals were also those by which the rows repaint.
    viewport()->update();
}

void CurveList::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu menu(this);
    menu.addAction(tr("Show all"), this, [this] { setAllShown(true); });
    menu.addAction(tr("Hide all"), this, [this] { setAllShown(false); });
    menu.exec(event->globalPos());
}

void CurveList::setAllShown(bool shown)
{
    for (int i = 0; i < topLevelItemCount(); ++i)
        topLevelItem(i)->setCheckState(Name, shown ? Qt::Checked : Qt::Unchecked);
}
