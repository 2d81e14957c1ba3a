#include "views/models/ViewForm.h"

#include "protocol/finger_info.h"
#include "views/models/SensorPicture.h"
#include "views/models/gauge_writing.h"
#include "views/models/view_layout.h"
#include "views/sensorForm.h"
#include "views/ydds.h"

#include <QBoxLayout>
#include <QCoreApplication>
#include <QGridLayout>
#include <QLabel>
#include <QProgressBar>
#include <QScrollArea>
#include <QTabWidget>

#include <algorithm>

namespace {

/// Index of the page with the board picture, behind the pages that every view with such a page has.
constexpr int kBoardPageIndex = 2;

/// The widest text of a force block: both forces at full scale, with a sign where the format has one, and a
/// direction.
QString widestBlock(const finger_info_ts &row)
{
    const bool isSigned = row.yddsFmt == 2 || row.yddsFmt == 5;
    const QString force = (isSigned ? QStringLiteral("-") : QString()) +
                          forceText(std::max(row.range, static_cast<float>(kGaugeFullScaleNewtons)));
    return force + QLatin1Char('\n') + force + QStringLiteral("\n359");
}

QString numbered(const char *name, int number)
{
    return QLatin1String(name) + QString::number(number);
}

ydds *makeGauge(const QString &name)
{
    auto *gauge = new ydds;
    gauge->setObjectName(name);
    return gauge;
}

QWidget *pageWith(QWidget *content)
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->addWidget(content);
    return page;
}

QProgressBar *addBar(QGridLayout *grid, const QString &name, const QString &caption, int maximum)
{
    auto *bar = new QProgressBar;
    bar->setObjectName(name);
    bar->setRange(0, maximum);
    bar->setValue(0);
    bar->setFormat(QStringLiteral("%v"));
    bar->setAlignment(Qt::AlignCenter);
    const int row = grid->rowCount();
    grid->addWidget(new QLabel(caption), row, 0);
    grid->addWidget(bar, row, 1);
    return bar;
}

} // namespace

void ViewForm::setupUi(QWidget *view, const QByteArray &viewClass, const ViewLayout &layout,
                       const finger_info_ts &row)
{
    m_widestForce = forceText(row.range);
    m_widestBlock = widestBlock(row);
    view->setObjectName(QString::fromLatin1(viewClass));
    const bool emptyForm = layout.drawing->gauges.count == 0;
    const int barCount = emptyForm ? 0 : row.sProxNum + row.mProxNum;
    const bool pictureOnPage = layout.has(kGaugePage) || layout.has(kForcePage);
    const QSize picture = sensorOutline(layout.drawing->outline).size;
    const bool besideEachOther =
        !pictureOnPage && picture.height() > picture.width() && (layout.pages != kNoPages || barCount > 1);
    auto *box = new QBoxLayout(besideEachOther ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, view);
    box->setContentsMargins(0, 0, 0, 0);
    if (!pictureOnPage)
        box->addWidget(makeGaugePicture(layout, true), besideEachOther ? 1 : 3);
    QWidget *bars = barCount > 0 || layout.has(kProximityPage) ? makeBars(layout.barMaximum, row) : nullptr;
    if (layout.pages != kNoPages) {
        tabWidget = new QTabWidget;
        tabWidget->setObjectName(QStringLiteral("tabWidget"));
        addPages(viewClass, layout, bars);
        box->addWidget(tabWidget, 1);
    }
    if (bars != nullptr && !layout.has(kProximityPage))
        box->addWidget(bars, besideEachOther ? 1 : 0);
}

void ViewForm::addPages(const QByteArray &viewClass, const ViewLayout &layout, QWidget *bars)
{
    const auto add = [this, &viewClass](QWidget *page, const char *title) {
        tabWidget->addTab(page, QCoreApplication::translate(viewClass.constData(), title));
    };
    if (layout.has(kGaugePage))
        add(pageWith(makeGaugePicture(layout, false)), "三维力");
    if (layout.has(kForcePage))
        add(pageWith(layout.has(kGaugePage) ? makeForcePicture(layout) : makeGaugePicture(layout, true)),
            "压力");
    if (layout.has(kProximityPage)) {
        bars->layout()->setContentsMargins(0, 0, 0, 0); // the page has margins
        QWidget *page = pageWith(bars);
        page->layout()->setAlignment(bars, Qt::AlignTop);
        add(page, "接近");
    }
    if (layout.has(kDataPage))
        add(makeDataPage(), "数据");
    if (layout.has(kBoardPicture))
        tabWidget->insertTab(kBoardPageIndex, makeBoardPage(), QStringLiteral("PCB"));
}

QWidget *ViewForm::makeGaugePicture(const ViewLayout &layout, bool withForces)
{
    auto *picture = new SensorPicture(layout.drawing->outline);
    addGauges(picture, layout);
    if (withForces)
        addForces(picture, layout);
    return picture;
}

QWidget *ViewForm::makeForcePicture(const ViewLayout &layout)
{
    auto *picture = new SensorPicture(layout.drawing->outline);
    addForces(picture, layout);
    if (discs.isEmpty() && wgSensor == nullptr) {
        for (const Spot &spot : layout.drawing->gauges)
            picture->addSpot(spot);
    }
    return picture;
}

void ViewForm::addGauges(SensorPicture *picture, const ViewLayout &layout)
{
    for (const Spot &spot : layout.drawing->gauges) {
        ydds *gauge = makeGauge(numbered("label_", gauges.size() + 1));
        if (layout.gaugeText != GaugeText::None)
            gauge->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        picture->addSpot(spot, gauge, layout.gaugeText == GaugeText::WhenAsked ? m_widestBlock : QString());
        gauges.append(gauge);
    }
}

void ViewForm::addForces(SensorPicture *picture, const ViewLayout &layout)
{
    for (const Spot &spot : layout.drawing->discs) {
        ydds *disc = makeGauge(numbered("lbPress_", discs.size() + 1));
        disc->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        picture->addSpot(spot, disc, layout.has(kDiscTexts) ? m_widestForce : QString());
        discs.append(disc);
    }
    if (const TileLayout *tiles = layout.drawing->tiles; tiles != nullptr) {
        wgSensor = new sensorForm;
        wgSensor->setObjectName(QStringLiteral("wgSensor"));
        picture->setTiles(*tiles, wgSensor, m_widestForce);
    }
}

QWidget *ViewForm::makeBars(int maximum, const finger_info_ts &row)
{
    auto *box = new QWidget;
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(6, 4, 6, 4);
    grid->setColumnStretch(1, 1);
    const auto caption = [](const QString &text, int index) {
        return QStringLiteral("%1 %2").arg(text).arg(index);
    };
    for (int i = 0; i < row.sProxNum; ++i)
        sProxBars.append(
            addBar(grid, numbered("pbSProx_", i + 1), caption(QObject::tr("自电容接近"), i), maximum));
    for (int i = 0; i < row.mProxNum; ++i)
        mProxBars.append(
            addBar(grid, numbered("pbMProx_", i + 1), caption(QObject::tr("互电容接近"), i), maximum));
    return box;
}

QWidget *ViewForm::makeDataPage()
{
    sawgDataList = new QScrollArea;
    sawgDataList->setObjectName(QStringLiteral("sawgDataList"));
    sawgDataList->setWidgetResizable(true);
    sawgDataList->setFrameShape(QFrame::NoFrame);
    auto *contents = new QWidget;
    auto *column = new QVBoxLayout(contents);
    lyDataList = new QVBoxLayout;
    lyDataList->setObjectName(QStringLiteral("lyDataList"));
    column->addLayout(lyDataList);
    column->addStretch(1);
    sawgDataList->setWidget(contents);
    return sawgDataList;
}

QWidget *ViewForm::makeBoardPage()
{
    lbPCB = new QLabel;
    lbPCB->setObjectName(QStringLiteral("lbPCB"));
    lbPCB->setAlignment(Qt::AlignCenter);
    lbPCB->resize(240, 200);
    return pageWith(lbPCB);
}
