#include "tools/sensorDebugForm.h"

#include "link/SerialPortPoller.h"
#include "link/class_ch341.h"
#include "link/class_ch347.h"
#include "link/class_uart.h"
#include "link/device_ids.h"
#include "link/forms/device_box.h"
#include "link/pca9548.h"
#include "tools/form_looks.h"
#include "ui_sensorDebugForm.h"

#include <QRegularExpressionValidator>

namespace {

template<typename Link>
void release(Link *&link)
{
    if (link == nullptr)
        return;
    link->close();
    delete link;
    link = nullptr;
}

} // namespace

sensorDebugForm::sensorDebugForm(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui_sensorDebugForm>())
{
    qDebug("sensorDebugForm new");
    ui->setupUi(this);
    init();
}

sensorDebugForm::~sensorDebugForm()
{
    uartDeinit();
    ch341Deinit();
    ch347Deinit();
}

void sensorDebugForm::init()
{
    qDebug("sensorDebugForm init");
    setupLooks();
    setupConnections();
    coupleBoardsAndChannels();
}

void sensorDebugForm::setupLooks()
{
    for (QSpinBox *box : {ui->spbCh341Addr, ui->spbCh341Read, ui->spbDelay})
        setFixedFont(box);
    setFixedFont(ui->leCh341Write);
    setFixedFont(ui->lbChk);
    setFixedFont(ui->txtDebugLog);
    addButtonShortcut(ui->pbtnInfConnect, Qt::CTRL + Qt::Key_O);
    addButtonShortcut(ui->pbtnCh341Write, Qt::CTRL + Qt::Key_Return);
    addButtonShortcut(ui->pbtnCh341Read, Qt::CTRL + Qt::Key_R);
    addButtonShortcut(ui->pbtnCh341WR, Qt::CTRL + Qt::SHIFT + Qt::Key_Return);
    addButtonShortcut(ui->pbtnDebugLogClear, Qt::CTRL + Qt::Key_L);
}

void sensorDebugForm::setupConnections()
{
    connect(ui->rbtnIIC, &QRadioButton::clicked, this, &sensorDebugForm::chooseCh341);
    connect(ui->rbtnIICCh347, &QRadioButton::clicked, this, &sensorDebugForm::chooseCh347);
    connect(ui->rbtnUart, &QRadioButton::clicked, this, &sensorDebugForm::chooseUart);
    connect(ui->pbtnInfConnect, &QPushButton::clicked, this, &sensorDebugForm::toggleConnection);
    connect(ui->pbtnSetPCA9548, &QPushButton::clicked, this, &sensorDebugForm::setChannels);
    connect(ui->pbtnGetPCA9548, &QPushButton::clicked, this, &sensorDebugForm::getChannels);

    const QRegularExpression hexDigits(QStringLiteral("^[0-9a-fA-F]+$"));
    ui->leCh341Write->setValidator(new QRegularExpressionValidator(hexDigits, this));
    connect(ui->leCh341Write, &QLineEdit::textChanged, this, &sensorDebugForm::showSum);
    connect(ui->leCh341Write, &QLineEdit::returnPressed, ui->pbtnCh341Write, &QPushButton::click);
    connect(ui->pbtnCh341Write, &QPushButton::clicked, this, &sensorDebugForm::writeBytes);
    connect(ui->pbtnCh341Read, &QPushButton::clicked, this, &sensorDebugForm::readBytes);
    connect(ui->pbtnCh341WR, &QPushButton::clicked, this, &sensorDebugForm::writeAndRead);

    connect(this, &sensorDebugForm::si_appendDebugLog, this, &sensorDebugForm::appendLog);
    connect(ui->pbtnDebugLogClear, &QPushButton::clicked, ui->txtDebugLog, &QPlainTextEdit::clear);
}

void sensorDebugForm::start()
{
    qDebug("sensorDebugForm start");
    for (QRadioButton *button : {ui->rbtnIIC, ui->rbtnIICCh347, ui->rbtnUart}) {
        if (button->isChecked())
            Q_EMIT button->clicked();
    }
}

void sensorDebugForm::stop()
{
    qDebug("sensorDebugForm stop");
    // Leaving the tab is no reason to change it.
    const QString text = ui->pbtnInfConnect->text();
    uartDeinit();
    ch341Deinit();
    ch347Deinit();
    ui->pbtnInfConnect->setText(text);
}

void sensorDebugForm::chooseCh341()
{
    if (ch341 != nullptr)
        return;
    refillSpeedBox({QStringLiteral("20K"), QStringLiteral("100K"), QStringLiteral("400K")});
    uartDeinit();
    ch347Deinit();
    ch341Init();
    ui->gpbPca->setEnabled(true);
}

void sensorDebugForm::chooseCh347()
{
    if (ch347 != nullptr)
        return;
    refillSpeedBox({QStringLiteral("100K"), QStringLiteral("400K"), QStringLiteral("750K")});
    uartDeinit();
    ch341Deinit();
    ch347Init();
    ui->gpbPca->setEnabled(true);
}

void sensorDebugForm::chooseUart()
{
    if (uart != nullptr)
        return;
    refillSpeedBox({QStringLiteral("115200"), QStringLiteral("460800"), QStringLiteral("921600")});
    ch341Deinit();
    ch347Deinit();
    uartInit();
    ui->gpbPca->setEnabled(false);
}

void sensorDebugForm::refillSpeedBox(const QStringList &speeds)
{
    ui->cbbDevSpeed->clear();
    ui->cbbDevSpeed->addItems(speeds);
}

void sensorDebugForm::uartInit()
{
    uart = new class_uart(this);
    connect(uart, &class_uart::si_close, this, [this] { showConnected(false); });
    const auto *poller = new SerialPortPoller(uart, [this] { return ui->rbtnUart->isChecked(); });
    connect(poller, &SerialPortPoller::portsListed, this,
            [this](const QStringList &names) { refillDeviceBox(ui->cbbDevInf, names); });
    uart->scan(false);
}

void sensorDebugForm::ch341Init()
{
    ch341 = new class_ch341(this);
    connect(ch341, &class_ch341::si_disconnected, this, [this] { showConnected(false); });
    connect(ch341, &class_ch341::si_connected, this, [this] {
        showConnected(true); // also when the link comes back by itself, from another index
        setUpBusAtSpeed(*ch341, static_cast<ch341_iic_speed_te>(ui->cbbDevSpeed->currentIndex()));
        pcaReset();
    });
    connect(ch341, &class_ch341::si_updateList, this, [this](const QVector<uint16_t> &ids) {
        if (ui->rbtnIIC->isChecked())
            refillDeviceBox(ui->cbbDevInf, deviceIdTexts(ids));
    });
}

void sensorDebugForm::ch347Init()
{
    ch347 = new class_ch347(this);
    connect(ch347, &class_ch347::si_connected, this, [this] {
        setUpBusAtSpeed(*ch347, static_cast<ch347_iic_speed_te>(ui->cbbDevSpeed->currentIndex() + 1));
        pcaReset();
        qDebug("ch347 connect");
    });
    connect(ch347, &class_ch347::si_disconnected, this, [this] {
        qDebug("ch347 disconnect");
        showConnected(false);
    });
    connect(ch347, &class_ch347::si_updateList, this, [this](const QVector<uint16_t> &ids) {
        if (ui->rbtnIICCh347->isChecked())
            refillDeviceBox(ui->cbbDevInf, deviceIdTexts(ids));
    });
}

void sensorDebugForm::uartDeinit()
{
    release(uart);
}

void sensorDebugForm::ch341Deinit()
{
    release(ch341);
}

void sensorDebugForm::ch347Deinit()
{
    release(ch347);
}

void sensorDebugForm::pcaReset()
{
    if (ch341 != nullptr)
        ::pcaReset(*ch341);
    else if (ch347 != nullptr)
        ::pcaReset(*ch347);
}

void sensorDebugForm::toggleConnection()
{
    if (ui->pbtnInfConnect->text() == QObject::tr("断开")) {
        closeLink();
        showConnected(false);
        return;
    }
    const QString device = ui->cbbDevInf->currentText();
    if (!device.isEmpty() && openLink(device))
        showConnected(true);
}

void sensorDebugForm::showConnected(bool connected)
{
    ui->pbtnInfConnect->setText(connected ? QObject::tr("断开") : QObject::tr("连接"));
}

bool sensorDebugForm::openLink(const QString &device)
{
    if (ch341 != nullptr)
        return ch341->open(device.toUShort());
    if (ch347 != nullptr)
        return ch347->open(device.toUShort());
    return uart != nullptr && uart->open(device, ui->cbbDevSpeed->currentText().toUInt());
}

void sensorDebugForm::closeLink()
{
    if (ch341 != nullptr)
        ch341->close();
    else if (ch347 != nullptr)
        ch347->close();
    else if (uart != nullptr)
        uart->close();
}

bool sensorDebugForm::isBridgeChosen() const
{
    return !ui->rbtnUart->isChecked();
}

bool sensorDebugForm::isLinkOpen() const
{
    if (ch341 != nullptr)
        return ch341->isOpen();
    if (ch347 != nullptr)
        return ch347->isOpen();
    return uart != nullptr && uart->port->isOpen();
}

QObject *sensorDebugForm::link() const
{
    if (ch341 != nullptr)
        return ch341;
    if (ch347 != nullptr)
        return ch347;
    return uart;
}
