#include "update/fwUpdateForm.h"

#include "app/class_settings.h"
#include "link/forms/device_box.h"
#include "link/forms/hex_text.h"
#include "link/pca9548.h"
#include "update/success_text.h"

#include "ui_fwUpdateForm.h"

#include <QButtonGroup>
#include <QDir>
#include <QFileDialog>
#include <QRegularExpressionValidator>

namespace {

QString filePathKey()
{
    return QStringLiteral("UPDATE/FILE_PATH");
}

BusSpeed speedOfRow(int row)
{
    switch (row) {
    case 1:
        return BusSpeed::Khz400;
    case 2:
        return BusSpeed::Khz750;
    default:
        return BusSpeed::Khz100;
    }
}

} // namespace

fwUpdateForm::fwUpdateForm(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::fwUpdateForm>())
{
    qDebug("fwUpdateForm new");
    ui->setupUi(this);
    init();
}

fwUpdateForm::~fwUpdateForm()
{
    m_link.release();
}

void fwUpdateForm::init()
{
    qDebug("fwUpdateForm init");
    initInterfaces();
    initResetCommand();
    initFile();
    initJob();
}

// The first press of a double click has done what the user meant; the second would undo it.
bool fwUpdateForm::eventFilter(QObject *watched, QEvent *event)
{
    return watched == ui->pbtnUpdateStart && event->type() == QEvent::MouseButtonDblClick;
}

void fwUpdateForm::initInterfaces()
{
    auto *group = new QButtonGroup(this);
    for (const auto kind : {SensorLink::Kind::Ch341, SensorLink::Kind::Ch347, SensorLink::Kind::Serial})
        group->addButton(buttonOf(kind));
    for (const auto kind : {SensorLink::Kind::Ch341, SensorLink::Kind::Ch347}) {
        connect(buttonOf(kind), &QRadioButton::clicked, this, [this, kind] {
            showBridgeBoxes();
            makeLink(kind);
        });
    }
    connect(ui->rbtnUart, &QRadioButton::clicked, this, [this] {
        showSerialBoxes();
        uartInit();
        m_link.get()->scan();
    });
    connect(ui->cbbIICSpeed, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this](int row) {
        SensorLink *link = m_link.get();
        if (row >= 0 && ui->rbtnIIC->isChecked() && link && link->kind() == SensorLink::Kind::Ch341)
            link->setSpeed(static_cast<BusSpeed>(row));
    });
}

void fwUpdateForm::initResetCommand()
{
    static const QRegularExpression hexDigits(QStringLiteral("^[0-9a-fA-F]+$"));
    ui->leResetCmd->setValidator(new QRegularExpressionValidator(hexDigits, ui->leResetCmd));
    const auto enableFields = [this](int index) {
        ui->leResetCmd->setEnabled(index == 1);
        ui->spbResetAddr->setEnabled(index < 2);
    };
    connect(ui->cbbResetCmd, QOverload<int>::of(&QComboBox::currentIndexChanged), this, enableFields);
    enableFields(0);
}

void fwUpdateForm::initFile()
{
    ui->leUpdateFilePath->setText(class_settings::get(filePathKey()));
    connect(ui->leUpdateFilePath, &QLineEdit::textChanged, this,
            [](const QString &path) { class_settings::set(filePathKey(), path); });
    connect(ui->pbtnUpdateFileSelect, &QPushButton::clicked, this, &fwUpdateForm::selectFile);
}

void fwUpdateForm::initJob()
{
    connect(ui->pbtnUpdateStart, &QPushButton::clicked, this, [this] {
        if (isBusy())
            endUpdate();
        else
            beginUpdate();
    });
    ui->pbtnUpdateStart->installEventFilter(this);
    const auto address = QOverload<int>::of(&QSpinBox::valueChanged);
    const auto setAddress = [this](int value) { m_job.setAddress(static_cast<uint8_t>(value)); };
    setAddress(ui->spbUpdateAddr->value());
    connect(ui->spbUpdateAddr, address, this, setAddress);

    connect(this, &fwUpdateForm::si_updateStart, this, &fwUpdateForm::runUpdate);
    connect(this, &fwUpdateForm::si_updateCancel, &m_job, &UpdateJob::cancel);
    connect(&m_job, &UpdateJob::received, this, &fwUpdateForm::si_updateReceived);
    connect(&m_job, &UpdateJob::sent, this, &fwUpdateForm::si_updateSended);
    connect(&m_job, &UpdateJob::started, this, [this] { ui->lbRes->setText(QObject::tr("开始更新")); });
    connect(&m_job, &UpdateJob::progressed, ui->pbUpdate, &QProgressBar::setValue);
    connect(&m_job, &UpdateJob::succeeded, this, &fwUpdateForm::showSuccess);
    connect(&m_job, &UpdateJob::failed, this, &fwUpdateForm::showFailure);
    connect(&m_job, &UpdateJob::ended, this, [this] {
        if (isBusy())
            Q_EMIT ui->pbtnUpdateStart->clicked();
    });
}

void fwUpdateForm::selectFile()
{
    // The patterns in parentheses are for dialogs that do not split at ';'; the user sees what stands before
    // them.
    const QString path = QFileDialog::getOpenFileName(
        this, QObject::tr("选择app文件"), class_settings::get(filePathKey()),
        QStringLiteral("*.bin;*.hex (*.bin *.hex)"), nullptr, QFileDialog::HideNameFilterDetails);
    if (!path.isEmpty())
        ui->leUpdateFilePath->setText(QDir::toNativeSeparators(path));
}

void fwUpdateForm::start()
{
    qDebug("fwUpdateForm start");
    QRadioButton *chosen = ui->rbtnIIC;
    for (QRadioButton *button : {ui->rbtnUart, ui->rbtnIICCh347, ui->rbtnIIC}) {
        if (button->isChecked())
            chosen = button;
    }
    chosen->setChecked(true);
    Q_EMIT chosen->clicked();
}

void fwUpdateForm::stop()
{
    qDebug("fwUpdateForm stop");
    if (isBridgeChosen())
        m_boardIndex = ui->cbbInfIdx->currentIndex();
    uartDeinit();
    ch341Deinit();
    ch347Deinit();
}

QString fwUpdateForm::getFile() const
{
    return ui->leUpdateFilePath->text();
}

int fwUpdateForm::loadAppFile(QString path, bool merge, QString *name, QByteArray *image)
{
    const FirmwareFile file = loadFirmware(path, merge);
    if (file.error == FirmwareFile::Unreadable)
        ui->lbRes->setText(QObject::tr("文件打开失败"));
    if (file.error == FirmwareFile::Empty)
        ui->lbRes->setText(QObject::tr("用户程序文件为空文件"));
    name->append(file.name);
    image->append(file.image);
    return file.error;
}

void fwUpdateForm::sensorWrite(uint8_t addr, QByteArray frame, uint16_t len)
{
    m_link.write(addr, frame, len);
}

void fwUpdateForm::sensorRead(uint8_t addr, QByteArray *out, uint16_t len, uint16_t /*wait*/)
{
    m_link.read(addr, *out, len);
}

bool fwUpdateForm::isBridgeChosen() const
{
    return ui->rbtnIIC->isChecked() || ui->rbtnIICCh347->isChecked();
}

QRadioButton *fwUpdateForm::buttonOf(SensorLink::Kind kind) const
{
    switch (kind) {
    case SensorLink::Kind::Ch341:
        return ui->rbtnIIC;
    case SensorLink::Kind::Ch347:
        return ui->rbtnIICCh347;
    case SensorLink::Kind::Serial:
        break;
    }
    return ui->rbtnUart;
}

void fwUpdateForm::showBridgeBoxes()
{
    ui->cbbIICSpeed->clear();
    ui->cbbIICSpeed->addItems({QStringLiteral("100k"), QStringLiteral("400k")});
    ui->cbbUpdateDevList->clear();
    fillAdapterBoardBox(ui->cbbInfIdx, "fwUpdateForm");
    ui->cbbInfIdx->setEditable(false);
    ui->cbbInfIdx->setCurrentIndex(m_boardIndex);
    ui->spbUpdateAddr->show();
}

void fwUpdateForm::showSerialBoxes()
{
    ui->cbbIICSpeed->hide();
    ui->cbbUpdateDevList->clear();
    ui->cbbInfIdx->clear();
    ui->cbbInfIdx->addItems({QStringLiteral("115200"), QStringLiteral("460800"), QStringLiteral("921600")});
    ui->cbbInfIdx->setEditable(true);
    ui->spbUpdateAddr->show();
}

void fwUpdateForm::makeLink(SensorLink::Kind kind)
{
    const QRadioButton *button = buttonOf(kind);
    const SensorLink &link = m_link.choose(kind, [button] { return button->isChecked(); });
    connect(&link, &SensorLink::devicesListed, this,
            [this](const QStringList &names) { refillDeviceBox(ui->cbbUpdateDevList, names); });
    if (link.isBridge())
        connect(&link, &SensorLink::opened, this, &fwUpdateForm::bridgeOpened);
}

void fwUpdateForm::bridgeOpened()
{
    SensorLink &link = *m_link.get();
    link.setUpBusAtSpeed(speedOfRow(ui->cbbIICSpeed->currentIndex()));
    if (link.kind() == SensorLink::Kind::Ch347)
        link.pulsePcaReset();
    link.pcaReset();
}

bool fwUpdateForm::selectChannel()
{
    if (m_link.isSerial())
        return true;
    const int row = ui->cbbInfIdx->currentIndex();
    if (row <= 0) {
        ui->lbRes->setText(QObject::tr("IIC总线芯片(PCA9548)接口错误"));
        return true;
    }
    if (m_link.selectChannels(adapterBoardMask(row)))
        return true;
    ui->lbRes->setText(QObject::tr("IIC总线芯片(PCA9548)设置失败"));
    return false;
}

bool fwUpdateForm::isBusy() const
{
    return ui->pbtnUpdateStart->text() == QObject::tr("停止");
}

void fwUpdateForm::endUpdate()
{
    ui->pbtnUpdateStart->setText(QObject::tr("开始"));
    m_link.close();
    Q_EMIT si_updateCancel();
}

void fwUpdateForm::beginUpdate()
{
    m_job.abandon();
    const QString device = ui->cbbUpdateDevList->currentText();
    if (device.isEmpty() || ui->cbbInfIdx->currentText().isEmpty()) {
        ui->lbRes->setText(QObject::tr("通信接口未选择"));
        return;
    }
    if (!m_link.open(device, ui->cbbInfIdx->currentText().toUInt())) {
        ui->lbRes->setText(QObject::tr("通信接口打开失败"));
        m_link.close();
        return;
    }
    if (!selectChannel()) {
        m_link.close();
        return;
    }
    ui->pbtnUpdateStart->setText(QObject::tr("停止"));
    Q_EMIT si_updateStart();
}

void fwUpdateForm::runUpdate()
{
    UpdatePlan plan;
    plan.reset = static_cast<UpdatePlan::Reset>(ui->cbbResetCmd->currentIndex());
    if (plan.reset == UpdatePlan::Reset::Custom) {
        plan.customReset = bytesFromHexText(ui->leResetCmd->text());
        qDebug("reset cmd:%s", plan.customReset.toHex().constData());
    }
    plan.resetAddress = static_cast<uint8_t>(ui->spbResetAddr->value());
    plan.device = ui->cbbUpdateDevList->currentText();
    plan.baudRate = ui->cbbInfIdx->currentText().toUInt();
    plan.load = [this] {
        FirmwareFile file;
        const bool merge = ui->cbbSensorVersion->currentIndex() == 0;
        file.error = loadAppFile(getFile(), merge, &file.name, &file.image);
        return file;
    };
    m_job.start(plan);
}

void fwUpdateForm::showSuccess(std::chrono::milliseconds elapsed)
{
    Q_EMIT si_updateSuccess();
    ui->lbRes->setText(updateSuccessText(elapsed));
}

void fwUpdateForm::showFailure(UpdateJob::Failure failure)
{
    if (failure != UpdateJob::Failure::File)
        Q_EMIT si_updateFail();
    switch (failure) {
    case UpdateJob::Failure::File:
        ui->lbRes->setText(QObject::tr("文件加载失败"));
        break;
    case UpdateJob::Failure::Timeout:
        ui->lbRes->setText(QObject::tr("更新超时"));
        break;
    case UpdateJob::Failure::Cancelled:
        ui->lbRes->setText(QObject::tr("更新取消"));
        break;
    }
}
