#include "panel/fingerForm.h"

#include "ui_fingerForm.h"

#include "panel/recording_folder.h"
#include "views/class_finger.h"
#include "views/dataForm.h"

#include <QButtonGroup>
#include <QLineEdit>
#include <QStyle>
#include <QTimer>

namespace {

constexpr int kInfoPage = 0;
constexpr int kCalibrationPage = 3;
constexpr int kForceSendType = 4;

void stretchHeaders(QTableWidget *table, bool hidden)
{
    for (QHeaderView *header : {table->horizontalHeader(), table->verticalHeader()}) {
        header->setSectionResizeMode(QHeaderView::Stretch);
        header->setHidden(hidden);
    }
}

// A scroll area brings a background of its own, which is not that of a page.
void letPageShowThrough(QScrollArea *area)
{
    area->viewport()->setAutoFillBackground(false);
    area->widget()->setAutoFillBackground(false);
}

// An edit that was typed into is finished when the focus leaves it, and would send even on its way out.
void emptyTable(QTableWidget *table)
{
    for (QLineEdit *edit : table->findChildren<QLineEdit *>())
        edit->blockSignals(true);
    table->clear();
    table->setRowCount(0);
    table->setColumnCount(0);
}

} // namespace

fingerForm::fingerForm(unsigned char inf, unsigned char address, QWidget *parent)
    : QWidget(parent)
    , ui(new Ui::fingerForm)
    , infIdx(inf)
    , addr(address)
    , port([this](const QByteArray &frame, uint16_t rspLen) {
        Q_EMIT si_cmdReq1(infIdx, addr, frame, rspLen);
    })
    , recorder(recordingFolder(), inf, address)
{
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    hideWhatIsNotOffered();
    for (QScrollArea *area : {ui->sawgDataList, ui->scrollArea})
        letPageShowThrough(area);
    auto *modes = new QButtonGroup(this);
    modes->addButton(ui->rbtnModeNor);
    modes->addButton(ui->rbtnModeHighBd);
    setupTables();
    cmdFuncInit();
    ui->tabWidget->setCurrentIndex(kInfoPage);
    countdownTimer = new QTimer(this);
    wireControls();
    sl_reset(inf, address);
}

fingerForm::~fingerForm()
{
    sl_reset(infIdx, addr);
    delete ui;
}

void fingerForm::hideWhatIsNotOffered()
{
    ui->tabWidget->setCornerWidget(ui->chkbtnSave);
    ui->tabWidget->removeTab(kCalibrationPage);
    for (QWidget *widget : std::initializer_list<QWidget *>{
             ui->label_19, ui->lbRunTime, ui->groupBox_4, ui->groupBox_3, ui->groupBox_5, ui->groupBox_6,
             ui->chkbtnAutoDacPowerUp, ui->groupBox_7, ui->widget_2})
        widget->hide();
}

void fingerForm::setupTables()
{
    stretchHeaders(ui->tbwThreshold, false);
    for (QHeaderView *header : {ui->tbwCaliTable->horizontalHeader(), ui->tbwCaliTable->verticalHeader()})
        header->setSectionResizeMode(QHeaderView::ResizeToContents);
    for (QTableWidget *table : {ui->tbwCaliCh, ui->tbwCaliChGroup, ui->tbwCaliMaxAuto})
        stretchHeaders(table, true);
}

void fingerForm::wireControls()
{
    connect(countdownTimer, &QTimer::timeout, this, &fingerForm::countdownTick);
    connect(ui->spbIICAddr, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this](int value) { ui->lbIICAddr->setText(QString::number(value)); });
    wireParameterControls();
    connect(ui->tabWidget, &QTabWidget::currentChanged, this, &fingerForm::outputTypeByPage);
    connect(ui->chkbtnShowData, &QCheckBox::clicked, this, [this] {
        if (ff)
            ff->setShowData(ui->chkbtnShowData->isChecked());
    });
}

void fingerForm::sl_reset(uint8_t inf, uint8_t address)
{
    if (!isMine(inf, address))
        return;
    recorder.endRun();
    warnOfLostSample(false);
    for (QLabel *label : {ui->lbVersionTime, ui->lbVersionDate, ui->lbVersion, ui->lbSN, ui->lbAddr, ui->lbHz,
                          ui->lbType, ui->lbCaliTableState})
        label->clear();
    {
        // A reset sends nothing, and a change of this box would.
        const QSignalBlocker blocker(ui->cbbSetSendType);
        ui->cbbSetSendType->setCurrentIndex(0);
    }
    ui->spbProxReleaseThreshold->setValue(0);
    ui->spbProxReleaseThresholdScale->setValue(1);
    ui->spbPressReleaseThreshold->setValue(0);
    ui->spbPressReleaseThresholdScale->setValue(1);
    ui->gpbTitle->setTitle(QString());
    // The view is decoder and widget in one object.
    delete dynamic_cast<QWidget *>(ff);
    ff = nullptr;
    emptyTable(ui->tbwThreshold);
    emptyTable(ui->tbwCaliTable);
    countdownTimer->stop();
    clearSensorChannelWg();
    ui->rbtnModeNor->setChecked(true);
}

void fingerForm::sl_setHz(uint8_t inf, uint8_t address, uint16_t hz, uint16_t rHz)
{
    if (isMine(inf, address))
        ui->lbHz->setText(QString::asprintf("%d/%d", rHz, hz));
}

void fingerForm::sl_updateData(uint8_t inf, uint8_t address, QVector<uint8_t> pack)
{
    if (!isMine(inf, address) || !ff)
        return;
    // The decoder keeps nothing of the frame, so it may look at it where it is. What it refuses is sent and recorded
    // like the sample before.
    ff->parseData(QByteArray::fromRawData(reinterpret_cast<const char *>(pack.constData()), pack.size()));
    Q_EMIT si_sendDataStrList(infIdx, addr, ff->dataList);
    save();
}

void fingerForm::save()
{
    if (ui->chkbtnSave->checkState() == Qt::Checked) {
        warnOfLostSample(!recorder.append(*ff));
    } else {
        recorder.endRun();
        warnOfLostSample(false);
    }
}

void fingerForm::warnOfLostSample(bool lost)
{
    QCheckBox *box = ui->chkbtnSave;
    if (lost != box->icon().isNull())
        return;
    box->setIcon(lost ? style()->standardIcon(QStyle::SP_MessageBoxWarning) : QIcon());
    box->setToolTip(lost ? QString::fromUtf8(SampleRecorder::kFailure) : QString());
}

// The view needs forces; the other pages show what the user chose.
void fingerForm::outputTypeByPage(int page)
{
    if (page != ui->tabWidget->currentIndex())
        ui->tabWidget->setCurrentIndex(page);
    if (ui->tabWidget->currentIndex() == kInfoPage) {
        requestSendType(kForceSendType);
        return;
    }
    qDebug("set sendType:%d", sendType);
    if (ui->cbbSetSendType->currentIndex() == sendType)
        Q_EMIT ui->cbbSetSendType->currentIndexChanged(sendType);
    else
        ui->cbbSetSendType->setCurrentIndex(sendType);
}

void fingerForm::countdownTick()
{
    --countdown;
    ui->lbAutoThresholdTime->setText(tr("倒计时：") + QString::number(countdown) + tr("秒"));
    if (countdown > 0)
        return;
    Q_EMIT ui->pbtnGetThreshold->clicked();
    countdownTimer->stop();
}
