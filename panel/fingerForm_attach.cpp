// Attaching a sensor: its view, its cells, its tables, the first questions to it.

#include "panel/fingerForm.h"

#include "ui_fingerForm.h"

#include "protocol/finger_info.h"
#include "views/class_finger.h"
#include "views/dataForm.h"
#include "views/models/view_factory.h"

#include <QDebug>
#include <QPointer>

namespace {

constexpr uint8_t kUnknownPrg = 0xFF;

// A sensor that did not tell its program id counts as the first model with frames of its length.
bool guessProgram(sensor_ts &info)
{
    const finger_info_ts *row = findFingerInfoByPackLen(info.pack.size());
    if (!row) {
        qDebug("not found finger:%d", info.prg);
        return false;
    }
    info.prg = row->prg;
    qDebug("fing prg:%s", row->name);
    return true;
}

} // namespace

int fingerForm::channelCount() const
{
    return ff && ff->info ? ff->info->chNum : 0;
}

void fingerForm::sl_connectedFinger(uint8_t inf, uint8_t address, sensor_ts info)
{
    if (!isMine(inf, address))
        return;
    sl_reset(infIdx, addr);
    if (ff) {
        qDebug("ff err");
        return;
    }
    port.close();
    const QPointer<fingerForm> self(this);
    const bool known = (info.prg != kUnknownPrg || guessProgram(info)) && buildView(info.prg);
    if (!self)
        return;
    offerParameters(known);
    if (!known)
        return;
    prg = info.prg;
    addCells();
    setupChannelTable();
    setupCalibrationTables();
    if (ff->info)
        qDebug("%s", ff->info->name);
    port.open(info.type);
    askSensor(info);
    ff->setShowData(ui->chkbtnShowData->isChecked());
}

// Nothing on these pages does anything for a sensor of an unknown model.
void fingerForm::offerParameters(bool offered)
{
    for (QWidget *page : {ui->tab_4, ui->tab_3})
        ui->tabWidget->setTabEnabled(ui->tabWidget->indexOf(page), offered);
}

// False when there is no view for the program id, and when the panel did not outlive the box that a view without a
// catalogue row opens.
bool fingerForm::buildView(uint8_t program)
{
    const QPointer<fingerForm> self(this);
    class_finger *built = makeView(program, this);
    if (!self || !built)
        return false;
    ff = built;
    ui->gl->addWidget(dynamic_cast<QWidget *>(ff));
    connect(&ff->signals, &class_fingerSignals::si_dataUpdate, this, &fingerForm::refreshCells);
    return true;
}

void fingerForm::addCells()
{
    if (!ff->info)
        return;
    const auto add = [this](const QString &name, int index, unsigned char type) {
        addSensorChannelWg(name + QString::number(index), type);
    };
    constexpr unsigned char withButtons = 0;
    constexpr unsigned char plain = 1;
    for (int i = 0; i < ff->info->chNum; ++i)
        add(QCoreApplication::translate("dataForm", "通道"), i, withButtons);
    for (int i = 0; i < ff->info->yddsNum; ++i) {
        add(QObject::tr("法向力"), i, plain);
        add(QObject::tr("切向力"), i, plain);
        add(QObject::tr("方向"), i, plain);
    }
    for (int i = 0; i < ff->info->sProxNum; ++i)
        add(QObject::tr("自电容接近"), i, plain);
    for (int i = 0; i < ff->info->mProxNum; ++i)
        add(QObject::tr("互电容接近"), i, plain);
    if (ff->info->hasStatus)
        addSensorChannelWg(QObject::tr("状态"), plain);
    alignCells();
}

// One width for all captions, so that the values stand below each other with and without buttons beside them.
void fingerForm::alignCells()
{
    QList<QLabel *> labels;
    int width = 0;
    for (const dataForm *cell : qAsConst(dataFormList)) {
        labels += cell->findChild<QLabel *>(QStringLiteral("lbIdx"));
        width = qMax(width, labels.last()->sizeHint().width());
    }
    for (QLabel *label : qAsConst(labels))
        label->setFixedWidth(width);
}

void fingerForm::addSensorChannelWg(const QString &name, unsigned char type)
{
    auto *cell = new dataForm(static_cast<unsigned char>(dataFormList.size()), name, type, ui->sawgDataList);
    ui->lyDataList->addWidget(cell);
    connect(cell, &dataForm::si_reset, this, &fingerForm::resetChannel);
    connect(cell, &dataForm::si_en, this, &fingerForm::enableChannel);
    dataFormList.append(cell);
}

void fingerForm::clearSensorChannelWg()
{
    while (!dataFormList.isEmpty())
        delete dataFormList.takeFirst();
}

void fingerForm::setupChannelTable()
{
    const int channels = channelCount();
    QStringList rows;
    for (int i = 0; i < channels; ++i)
        rows += QObject::tr("通道") + QString::number(i);
    ui->tbwThreshold->setRowCount(channels);
    ui->tbwThreshold->setColumnCount(1);
    ui->tbwThreshold->setHorizontalHeaderLabels({QObject::tr("阈值")});
    ui->tbwThreshold->setVerticalHeaderLabels(rows);
}

void fingerForm::askSensor(const sensor_ts &info)
{
    getVersion();
    getPrg();
    getSN();
    ui->lbAddr->setText(QString::asprintf("0x%02X", info.addr));
    ui->lbType->setText(QString::number(info.type));
    ui->spbIICAddr->setValue(info.addr);
    Q_EMIT ui->pbtnGetThreshold->clicked();
    sendType = 0;
    ui->cbbSetSendType->setCurrentIndex(0);
    // Makes the first page current and asks for forces, the last thing that goes out.
    Q_EMIT ui->tabWidget->currentChanged(0);
}

void fingerForm::refreshCells()
{
    const QVector<QString> &values = ff->dataList;
    if (values.size() != dataFormList.size()) {
        qDebug("ff->dataList.length() != dataFormList.length() :%d,%d", values.size(), dataFormList.size());
        qDebug() << values;
    }
    const int channels = channelCount();
    for (int i = 0; i < dataFormList.size(); ++i) {
        const QString value = values.value(i);
        dataFormList.at(i)->setValue(value);
        // A negative odd value leaves -1 and does not count as a touch.
        if (i < channels)
            dataFormList.at(i)->setTouched(value.toInt() % 2 == 1);
    }
}
