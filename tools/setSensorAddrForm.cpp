#include "tools/setSensorAddrForm.h"

#include "link/SerialPortPoller.h"
#include "link/class_ch341.h"
#include "link/class_ch347.h"
#include "link/class_uart.h"
#include "link/device_ids.h"
#include "link/forms/device_box.h"
#include "link/pca9548.h"
#include "tools/form_looks.h"
#include "ui_setSensorAddrForm.h"

#include <QScopedValueRollback>

namespace {

constexpr int kScanIntervalMs = 50;
constexpr int kUsualArgument = 1; // 460800 baud, or the first adapter board

template<typename Link>
void release(QPointer<Link> &link)
{
    if (!link)
        return;
    link->close();
    link->deleteLater();
    link.clear();
}

void setSensorSpeed(class_ch341 &bridge)
{
    bridge.setIICSpeed(ch341_iic_speed_te::Khz100);
}

void setSensorSpeed(class_ch347 &bridge)
{
    bridge.setIICSpeed(ch347_iic_speed_te::Khz100);
}

void coupleSpinBoxes(QSpinBox *first, QSpinBox *second)
{
    const auto changed = QOverload<int>::of(&QSpinBox::valueChanged);
    QObject::connect(first, changed, second, &QSpinBox::setValue);
    QObject::connect(second, changed, first, &QSpinBox::setValue);
}

} // namespace

setSensorAddrForm::setSensorAddrForm(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui_setSensorAddrForm>())
    , timerScan(new QTimer(this))
    , timerAlive(new QTimer(this))
{
    qDebug("tactViewForm new");
    setAttribute(Qt::WA_DeleteOnClose);
    ui->setupUi(this);
    setupLooks();
    setupConnections();
}

setSensorAddrForm::~setSensorAddrForm()
{
    uartDeinit();
    ch341Deinit();
    ch347Deinit();
}

void setSensorAddrForm::setupLooks()
{
    for (QSpinBox *box : {ui->spbCurrAddrHex, ui->spbCurrAddrDec, ui->spbTarAddrHex, ui->spbTarAddrDec})
        setFixedFont(box);
    addButtonShortcut(ui->pbtnInfConnect, Qt::CTRL + Qt::Key_O);
    addButtonShortcut(ui->pbtnSet, Qt::CTRL + Qt::Key_Return);
}

void setSensorAddrForm::setupConnections()
{
    connect(timerScan, &QTimer::timeout, this, &setSensorAddrForm::poll);
    connect(timerAlive, &QTimer::timeout, this, &setSensorAddrForm::countSilence);
    connect(ui->cbbInf, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &setSensorAddrForm::chooseInterface);
    coupleSpinBoxes(ui->spbCurrAddrHex, ui->spbCurrAddrDec);
    coupleSpinBoxes(ui->spbTarAddrHex, ui->spbTarAddrDec);
    connect(ui->pbtnSet, &QPushButton::clicked, this, &setSensorAddrForm::requestSet);
    connect(ui->pbtnInfConnect, &QPushButton::clicked, this, &setSensorAddrForm::toggleConnection);
}

void setSensorAddrForm::start()
{
    qDebug("setSensorAddrForm start");
    Q_EMIT ui->cbbInf->currentIndexChanged(0);
}

void setSensorAddrForm::stop()
{
    qDebug("setSensorAddrForm stop");
    timerScan->stop();
    timerAlive->stop();
    uartDeinit();
    ch341Deinit();
    ch347Deinit();
}

void setSensorAddrForm::chooseInterface(int index)
{
    ui->cbbInfArg->clear();
    switch (static_cast<Interface>(index)) {
    case Interface::Uart:
        uartInit();
        ch341Deinit();
        ch347Deinit();
        setInterfaceArguments(QObject::tr("波特率"),
                              {QStringLiteral("115200"), QStringLiteral("460800"), QStringLiteral("921600")});
        uart->scan(false);
        break;
    case Interface::Ch341:
        ch341Init();
        uartDeinit();
        ch347Deinit();
        setInterfaceArguments(QObject::tr("转接板"), adapterBoardNames("QObject"));
        break;
    case Interface::Ch347:
        ch347Init();
        uartDeinit();
        ch341Deinit();
        setInterfaceArguments(QObject::tr("转接板"), adapterBoardNames("QObject"));
        break;
    }
}

void setSensorAddrForm::setInterfaceArguments(const QString &caption, const QStringList &items)
{
    ui->lbInfArg->setText(caption);
    ui->cbbInfArg->addItems(items);
    ui->cbbInfArg->setEditable(true);
    ui->cbbInfArg->setCurrentIndex(kUsualArgument);
}

setSensorAddrForm::Interface setSensorAddrForm::chosenInterface() const
{
    return static_cast<Interface>(ui->cbbInf->currentIndex());
}

bool setSensorAddrForm::isLinkOpen() const
{
    switch (chosenInterface()) {
    case Interface::Uart:
        return uart && uart->port->isOpen();
    case Interface::Ch341:
        return ch341 && ch341->isOpen();
    case Interface::Ch347:
        return ch347 && ch347->isOpen();
    }
    return false;
}

void setSensorAddrForm::uartInit()
{
    if (uart)
        return;
    uart = new class_uart(this);
    connect(uart, &class_uart::si_openSuccess, this, [this] {
        qDebug("uart connected");
        infOpen();
    });
    connect(uart, &class_uart::si_close, this, [this] {
        qDebug("uart disconnect");
        infClose();
        uart->scan(false);
    });
    const auto isWanted = [this] { return chosenInterface() == Interface::Uart && !isLinkOpen(); };
    const auto *poller = new SerialPortPoller(uart, isWanted);
    connect(poller, &SerialPortPoller::portsListed, this,
            [this](const QStringList &names) { refillDeviceBox(ui->cbbInfList, names); });
}

template<typename Bridge>
void setSensorAddrForm::bridgeInit(QPointer<Bridge> &link, Interface kind, const char *name)
{
    if (link)
        return;
    auto *bridge = new Bridge(this);
    link = bridge;
    connect(bridge, &Bridge::si_connected, this, [this, bridge, name] {
        qDebug("%s connected", name);
        infOpen();
        setUpSensorBus(*bridge);
        pcaReset();
        if (!m_opening)
            restoreChoice(*bridge);
    });
    connect(bridge, &Bridge::si_disconnected, this, [this, bridge, name] {
        qDebug("%s disconnect", name);
        infClose();
        bridge->getScanSignal();
    });
    connect(bridge, &Bridge::si_updateList, this, [this, kind](const QVector<uint16_t> &ids) {
        if (chosenInterface() == kind && !isLinkOpen())
            refillDeviceBox(ui->cbbInfList, deviceIdTexts(ids));
    });
}

void setSensorAddrForm::ch341Init()
{
    bridgeInit(ch341, Interface::Ch341, "ch341");
}

void setSensorAddrForm::ch347Init()
{
    bridgeInit(ch347, Interface::Ch347, "ch347");
}

void setSensorAddrForm::uartDeinit()
{
    release(uart);
}

void setSensorAddrForm::ch341Deinit()
{
    release(ch341);
}

void setSensorAddrForm::ch347Deinit()
{
    release(ch347);
}

void setSensorAddrForm::pcaReset()
{
    if (ch341)
        ::pcaReset(*ch341);
    else if (ch347)
        ::pcaReset(*ch347);
}

void setSensorAddrForm::toggleConnection()
{
    switch (chosenInterface()) {
    case Interface::Uart:
        if (uart)
            toggleSerial();
        break;
    case Interface::Ch341:
        if (ch341)
            toggleBridge(*ch341);
        break;
    case Interface::Ch347:
        if (ch347)
            toggleBridge(*ch347);
        break;
    }
}

void setSensorAddrForm::toggleSerial()
{
    if (uart->port->isOpen()) {
        uart->close();
        return;
    }
    const QString name = ui->cbbInfList->currentText();
    const QString baudRate = ui->cbbInfArg->currentText();
    if (!name.isEmpty() && !baudRate.isEmpty())
        uart->open(name, baudRate.toUInt());
}

template<typename Bridge>
void setSensorAddrForm::toggleBridge(Bridge &bridge)
{
    if (bridge.isOpen()) {
        bridge.close();
        return;
    }
    const QString id = ui->cbbInfList->currentText();
    if (id.isEmpty() || ui->cbbInfArg->currentText().isEmpty())
        return;
    m_openId = id;
    const QScopedValueRollback<bool> opening(m_opening, true);
    if (bridge.open(id.toUShort()))
        selectBoard(bridge);
}

template<typename Bridge>
void setSensorAddrForm::restoreChoice(Bridge &bridge)
{
    ui->cbbInfList->setCurrentText(m_openId);
    selectBoard(bridge);
}

template<typename Bridge>
void setSensorAddrForm::selectBoard(Bridge &bridge)
{
    setSensorSpeed(bridge);
    const uint8_t mask = adapterBoardMask(ui->cbbInfArg->currentIndex());
    bridge.write(kPca9548Address, &mask, 1);
}

void setSensorAddrForm::infOpen()
{
    ui->pbtnInfConnect->setText(QObject::tr("断开"));
    ui->lbFingerState->setText(QObject::tr("扫描中。。。"));
    alive = 0;
    // A link that is back at once finds the watchdog of its last time still running.
    timerAlive->stop();
    timerScan->start(kScanIntervalMs);
    setInterfaceEnabled(false);
}

void setSensorAddrForm::infClose()
{
    ui->pbtnInfConnect->setText(QObject::tr("连接"));
    ui->lbFingerState->setText(QObject::tr("接口未打开"));
    ui->cbbInfList->clear();
    timerScan->stop();
    // What was asked of this link must not reach whatever the next one leads to.
    setReq = 0;
    setInterfaceEnabled(true);
}

void setSensorAddrForm::setInterfaceEnabled(bool enabled)
{
    ui->cbbInf->setEnabled(enabled);
    ui->cbbInfList->setEnabled(enabled);
    ui->cbbInfArg->setEnabled(enabled);
}
