#include "panel/ValuePage.h"

#include "panel/RequestPort.h"
#include "protocol/finger_info.h"
#include "views/dataForm.h"

#include <QCoreApplication>
#include <QDebug>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

ValuePage::ValuePage(QScrollArea *area, QVBoxLayout *layout, RequestPort &port)
    : m_area(area)
    , m_layout(layout)
    , m_port(port)
{}

void ValuePage::addCells(const finger_info_ts &model)
{
    const auto add = [this](const QString &name, int index, unsigned char type) {
        addSensorChannelWg(name + QString::number(index), type);
    };
    constexpr unsigned char withButtons = 0;
    constexpr unsigned char plain = 1;
    for (int i = 0; i < model.chNum; ++i)
        add(QCoreApplication::translate("dataForm", "通道"), i, withButtons);
    for (int i = 0; i < model.yddsNum; ++i) {
        add(QObject::tr("法向力"), i, plain);
        add(QObject::tr("切向力"), i, plain);
        add(QObject::tr("方向"), i, plain);
    }
    for (int i = 0; i < model.sProxNum; ++i)
        add(QObject::tr("自电容接近"), i, plain);
    for (int i = 0; i < model.mProxNum; ++i)
        add(QObject::tr("互电容接近"), i, plain);
    if (model.hasStatus)
        addSensorChannelWg(QObject::tr("状态"), plain);
    alignCells();
}

// One width for all captions, so that the values stand below each other with and without buttons beside them.
void ValuePage::alignCells()
{
    QList<QLabel *> labels;
    int width = 0;
    for (const dataForm *cell : qAsConst(m_cells)) {
        labels += cell->findChild<QLabel *>(QStringLiteral("lbIdx"));
        width = qMax(width, labels.last()->sizeHint().width());
    }
    for (QLabel *label : qAsConst(labels))
        label->setFixedWidth(width);
}

void ValuePage::addSensorChannelWg(const QString &name, unsigned char type)
{
    auto *cell = new dataForm(static_cast<unsigned char>(m_cells.size()), name, type, m_area);
    m_layout->addWidget(cell);
    connect(cell, &dataForm::si_reset, this,
            [this](unsigned char channel) { m_port.request(Command::ResetChannel, {channel}); });
    connect(cell, &dataForm::si_en, this, [this](unsigned char channel, bool on) {
        m_port.request(Command::EnableChannel, {channel, 0, 0, static_cast<uint8_t>(on), 0});
    });
    m_cells.append(cell);
}

void ValuePage::clearSensorChannelWg()
{
    while (!m_cells.isEmpty())
        delete m_cells.takeFirst();
}

void ValuePage::show(const QVector<QString> &values)
{
    if (values.size() != m_cells.size()) {
        qDebug("ff->dataList.length() != dataFormList.length() :%d,%d", values.size(), m_cells.size());
        qDebug() << values;
    }
    const int channels = m_port.channelCount();
    for (int i = 0; i < m_cells.size(); ++i) {
        const QString value = values.value(i);
        m_cells.at(i)->setValue(value);
        // A negative odd value leaves -1 and does not count as a touch.
        if (i < channels)
            m_cells.at(i)->setTouched(value.toInt() % 2 == 1);
    }
}
