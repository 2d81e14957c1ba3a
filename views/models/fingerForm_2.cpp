#include "views/models/fingerForm_2.h"

#include "views/dataForm.h"
#include "views/models/gauge_writing.h"
#include "views/models/view_layout.h"

#include <QCoreApplication>
#include <QVBoxLayout>

fingerForm_2::fingerForm_2(QWidget *parent)
    : ModelView(*findViewLayout(2), parent)
{
    addCells();
}

void fingerForm_2::addCells()
{
    for (int i = 0; i < info->chNum; ++i) {
        const QString caption = QCoreApplication::translate("dataForm", "通道") + QString::number(i);
        const dataForm *cell = addSensorChannelWg(caption, 0);
        connect(cell, &dataForm::si_reset, &signals, &class_fingerSignals::si_channelReset);
        connect(cell, &dataForm::si_en, &signals, &class_fingerSignals::si_channelEn);
    }
    for (int i = 0; i < info->yddsNum; ++i) {
        for (const QString &caption : {QObject::tr("法向力"), QObject::tr("切向力"), QObject::tr("方向")})
            addSensorChannelWg(caption + QString::number(i), 1);
    }
    for (int i = 0; i < info->sProxNum; ++i)
        addSensorChannelWg(QObject::tr("自电容接近") + QString::number(i), 1);
}

dataForm *fingerForm_2::addSensorChannelWg(QString caption, unsigned char noButtons)
{
    auto *cell = new dataForm(static_cast<unsigned char>(dataFormList.size()), caption, noButtons);
    ui.lyDataList->addWidget(cell);
    dataFormList.append(cell);
    return cell;
}

void fingerForm_2::writeCell(int index, const QString &text)
{
    if (index < dataFormList.size())
        dataFormList.at(index)->setValue(text);
}

void fingerForm_2::setData(unsigned char channel, unsigned int value)
{
    if (channel >= dataFormList.size()) {
        qDebug("list len:%d", dataFormList.size());
        return;
    }
    writeCell(channel, QString::number(value));
}

void fingerForm_2::setTouchState(unsigned char channel, bool touched)
{
    if (channel < dataFormList.size())
        dataFormList.at(channel)->setTouched(touched);
}

void fingerForm_2::setYdds(unsigned char block, float normal, float tangential, unsigned short direction)
{
    const int first = info->chNum + 3 * block;
    writeCell(first, forceText(normal));
    writeCell(first + 1, forceText(tangential));
    writeCell(first + 2, QString::number(direction));
    ModelView::setYdds(block, normal, tangential, direction);
}

void fingerForm_2::setSProx(unsigned char index, unsigned int value)
{
    // Lands in the cell of the direction, which a sample has written just before.
    writeCell(info->forceChNum + index + 3, QString::number(value));
    ModelView::setSProx(index, value);
}
