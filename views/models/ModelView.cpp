#include "views/models/ModelView.h"

#include "views/models/TileArray.h"
#include "views/models/gauge_writing.h"
#include "views/models/view_layout.h"
#include "views/ydds.h"

#include <QProgressBar>
#include <QTabWidget>

#include <algorithm>

namespace {

QByteArray className(const ViewLayout &layout)
{
    return "fingerForm_" + QByteArray::number(layout.number);
}

uint16_t arrowDirection(const ArrowRule &rule, float normal, float tangential, uint16_t direction)
{
    const float gate = rule.gate == ArrowRule::Gate::Normal ? normal : tangential;
    if (!(gate > 0.0F) || (rule.limited && direction >= 360))
        return kNoArrow;
    return rule.rotation == 0 ? direction : static_cast<uint16_t>((direction + rule.rotation) % 360);
}

float arrowScale(float tangential)
{
    return std::min(tangential / static_cast<float>(kGaugeFullScaleNewtons), 1.0F);
}

/// Without a row nothing says what a sensor has: one proximity value, and forces on the gauges' scale.
finger_info_ts rowOrDefault(const finger_info_ts *row)
{
    finger_info_ts values;
    values.sProxNum = 1;
    values.range = static_cast<float>(kGaugeFullScaleNewtons);
    return row != nullptr ? *row : values;
}

void setBar(const QVector<QPointer<QProgressBar>> &bars, int index, unsigned int value)
{
    // A bar ignores what lies beyond its maximum, so the value is cut to it first.
    if (QProgressBar *bar = bars.value(index); bar != nullptr)
        bar->setValue(static_cast<int>(std::min(value, static_cast<unsigned int>(bar->maximum()))));
}

} // namespace

ModelView::ModelView(const ViewLayout &layout, QWidget *parent)
    : QWidget(parent)
    , class_finger(layout.number, this)
    , m_layout(layout)
{
    announce();
    ui.setupUi(this, className(layout), layout, rowOrDefault(info));
    if (ui.wgSensor != nullptr)
        m_tiles = std::make_unique<TileArray>(*layout.drawing->tiles, ui.wgSensor);
    if (ui.tabWidget != nullptr)
        ui.tabWidget->setCurrentIndex(0);
    if (layout.has(kBoardPicture))
        showBoardPicture();
}

ModelView::~ModelView() = default;

void ModelView::announce() const
{
    const QByteArray name = className(m_layout);
    if (m_layout.has(kDataPage))
        qDebug("%s new:%d", name.constData(), info != nullptr ? info->chNum : 0);
    else
        qDebug("%s new", name.constData());
}

void ModelView::showBoardPicture()
{
    const QPixmap board(QStringLiteral(":/finger/finger%1.png").arg(m_layout.number));
    if (board.isNull())
        ui.tabWidget->removeTab(2);
    else
        ui.lbPCB->setPixmap(board.scaled(ui.lbPCB->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

void ModelView::setShowData(bool show)
{
    if (m_layout.gaugeText == GaugeText::WhenAsked)
        showData = show;
}

void ModelView::setYdds(unsigned char block, float normal, float tangential, unsigned short direction)
{
    ydds *gauge = ui.gauges.value(block);
    if (gauge == nullptr) {
        if (m_layout.has(kTellsMissingGauge))
            qDebug("not found lb");
        return;
    }
    setDisc(gauge, gaugeColour(normal, m_layout.shades, m_layout.has(kFullAtScale)));
    setArrow(gauge, arrowDirection(m_layout.arrow, normal, tangential, direction), arrowScale(tangential));
    if (m_layout.gaugeText != GaugeText::None)
        gauge->setText(showData
                           ? QStringLiteral("%1\n%2\n%3")
                                 .arg(forceText(normal), forceText(tangential), QString::number(direction))
                           : QString());
}

void ModelView::setSProx(unsigned char index, unsigned int value)
{
    setBar(ui.sProxBars, index, value);
}

void ModelView::setMProx(unsigned char index, unsigned int value)
{
    setBar(ui.mProxBars, index, value);
}

void ModelView::setPress(unsigned char channel, float newtons, float range)
{
    ydds *disc = ui.discs.value(channel);
    if (disc == nullptr)
        return;
    setDisc(disc, pressColour(static_cast<double>(newtons) * 100 / static_cast<double>(range)));
    if (m_layout.has(kDiscTexts))
        disc->setText(showData ? forceText(newtons) : QString());
}

void ModelView::setPressNList(QVector<float> newtons, float range)
{
    if (m_tiles)
        m_tiles->show(newtons, range, showData);
}
