#include "tools/setSensorAddrForm.h"

#include "link/forms/device_box.h"
#include "link/pca9548.h"
#include "tools/form_looks.h"
#include "ui_setSensorAddrForm.h"

#include <QScopedValueRollback>

#include <chrono>

using namespace std::chrono_literals;

using Kind = SensorLink::Kind;

namespace {

constexpr auto kScanInterval = 50ms;
constexpr auto kAliveInterval = 100ms;
constexpr uint8_t kGoneTicks = 5;
constexpr auto kResultShown = 3000ms;
constexpr int kUsualArgument = 1; // 460800 baud, or the first adapter board

void coupleSpinBoxes(QSpinBox *first, QSpinBox *second)
{
    const auto changed = QOverload<int>::of(&QSpinBox::valueChanged);
    QObject::connect(first, changed, second, &QSpinBox::setValue);
    QObject::connect(second, changed, first, &QSpinBox::setValue);
}

} // namespace

setSensorAddrForm::setSensorAddrForm(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::setSensorAddrForm>())
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
    addButtonShortcut(ui->pbtnInfConnect, int(Qt::CTRL) + Qt::Key_O);
    addButtonShortcut(ui->pbtnSet, int(Qt::CTRL) + Qt::Key_Return);
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
    switch (static_cast<Kind>(index)) {
    case Kind::Serial:
        uartInit();
        setInterfaceArguments(QObject::tr("波特率"),
                              {QStringLiteral("115200"), QStringLiteral("460800"), QStringLiteral("921600")});
        m_link->scan();
        break;
    case Kind::Ch341:
        ch341Init();
        setInterfaceArguments(QObject::tr("转接板"), adapterBoardNames("QObject"));
        break;
    case Kind::Ch347:
        ch347Init();
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

bool setSensorAddrForm::isChosen(Kind kind) const
{
    return ui->cbbInf->currentIndex() == static_cast<int>(kind);
}

bool setSensorAddrForm::isLinkOpen() const
{
    return m_link && isChosen(m_link->kind()) && m_link->isOpen();
}

/// The link that was there before goes when the new one has come.
void setSensorAddrForm::makeLink(Kind kind)
{
    if (m_link && m_link->kind() == kind)
        return;
    const auto isWanted = [this, kind] { return isChosen(kind) && !isLinkOpen(); };
    const auto before = std::exchange(m_link, std::make_unique<SensorLink>(kind, nullptr, isWanted));
    SensorLink *link = m_link.get();
    connect(link, &SensorLink::opened, this, &setSensorAddrForm::linkUp);
    connect(link, &SensorLink::closed, this, [this, link] {
        qDebug("%s disconnect", link->name());
        infClose();
        link->scan();
    });
    connect(link, &SensorLink::devicesListed, this,
            [this](const QStringList &devices) { refillDeviceBox(ui->cbbInfList, devices); });
    if (before)
        before->close();
}

void setSensorAddrForm::release(Kind kind)
{
    if (!m_link || m_link->kind() != kind)
        return;
    m_link->close();
    m_link.reset();
}

void setSensorAddrForm::uartInit()
{
    makeLink(Kind::Serial);
}

void setSensorAddrForm::ch341Init()
{
    makeLink(Kind::Ch341);
}

void setSensorAddrForm::ch347Init()
{
    makeLink(Kind::Ch347);
}

void setSensorAddrForm::uartDeinit()
{
    release(Kind::Serial);
}

void setSensorAddrForm::ch341Deinit()
{
    release(Kind::Ch341);
}

void setSensorAddrForm::ch347Deinit()
{
    release(Kind::Ch347);
}

void setSensorAddrForm::pcaReset()
{
    if (m_link)
        m_link->pcaReset();
}

void setSensorAddrForm::toggleConnection()
{
    if (!m_link || !isChosen(m_link->kind()))
        return;
    if (m_link->isOpen()) {
        m_link->close();
        return;
    }
    const QString device = ui->cbbInfList->currentText();
    const QString argument = ui->cbbInfArg->currentText();
    if (device.isEmpty() || argument.isEmpty())
        return;
    m_openId = device;
    const QScopedValueRollback<bool> opening(m_opening, true);
    if (m_link->open(device, argument.toUInt()))
        selectBoard();
}

void setSensorAddrForm::linkUp()
{
    qDebug("%s connected", m_link->name());
    infOpen();
    m_link->setUpSensorBus();
    pcaReset();
    if (m_opening)
        return;
    // A bridge that has moved to another index was opened again by itself.
    ui->cbbInfList->setCurrentText(m_openId);
    selectBoard();
}

void setSensorAddrForm::selectBoard()
{
    if (!m_link->isBridge())
        return;
    m_link->setSpeed(BusSpeed::Khz100);
    const uint8_t mask = adapterBoardMask(ui->cbbInfArg->currentIndex());
    m_link->write(kPca9548Address, &mask, 1);
}

void setSensorAddrForm::infOpen()
{
    ui->pbtnInfConnect->setText(QObject::tr("断开"));
    ui->lbFingerState->setText(QObject::tr("扫描中。。。"));
    alive = 0;
    // A link that is back at once finds the watchdog of its last time still running.
    timerAlive->stop();
    timerScan->start(kScanInterval);
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

void setSensorAddrForm::requestSet()
{
    if (timerScan->isActive())
        setReq = 1;
}

void setSensorAddrForm::poll()
{
    if (!m_link)
        return;
    std::optional<uint8_t> target;
    if (std::exchange(setReq, 0) != 0)
        target = static_cast<uint8_t>(ui->spbTarAddrHex->value());
    const auto answer = GeneralCall(*m_link).ask(target);
    if (answer)
        sensorAnswered(*answer);
}

void setSensorAddrForm::sensorAnswered(const GeneralCall::Answer &answer)
{
    if (alive == 0) {
        ui->lbFingerState->setText(QObject::tr("已连接"));
        timerAlive->start(kAliveInterval);
    }
    if (isAddressSet(answer)) {
        ui->lbCmdState->setText(QObject::tr("成功"));
        QTimer::singleShot(kResultShown, ui->lbCmdState, &QLabel::clear);
    }
    alive = 1;
    if (answer.address)
        ui->spbCurrAddrDec->setValue(*answer.address);
}

void setSensorAddrForm::countSilence()
{
    if (!isLinkOpen()) {
        timerAlive->stop();
        return;
    }
    ++alive;
    if (alive < kGoneTicks)
        return;
    alive = 0;
    ui->lbFingerState->setText(QObject::tr("断开"));
    timerAlive->stop();
}
