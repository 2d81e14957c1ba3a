#include "tools/sensorDebugForm.h"

#include "link/forms/device_box.h"
#include "link/forms/hex_text.h"
#include "link/pca9548.h"
#include "protocol/frames.h"
#include "tools/debug_entry.h"
#include "tools/form_looks.h"
#include "ui_sensorDebugForm.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QPointer>
#include <QRegularExpressionValidator>
#include <QSerialPort>
#include <QTimer>

#include <chrono>

using Kind = SensorLink::Kind;

namespace {

constexpr int kShortestSealed = 4; // a shorter text keeps the sum that was typed or shown for it

/// The byte that two digits of a text name, 0 when they are not there.
char byteOfDigits(const QString &text, int at)
{
    return static_cast<char>(text.midRef(at, 2).toUShort(nullptr, 16));
}

/// Keeps the window alive for a while.
void spinEvents(std::chrono::milliseconds duration)
{
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.start(duration);
    while (timer.isActive())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

} // namespace

sensorDebugForm::sensorDebugForm(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::sensorDebugForm>())
{
    qDebug("sensorDebugForm new");
    ui->setupUi(this);
    qDebug("sensorDebugForm init");
    setupLooks();
    setupConnections();
    m_channels = std::make_unique<ChannelBoxes>(
        ChannelBoxes::Channels{ui->chkbCh0, ui->chkbCh1, ui->chkbCh2, ui->chkbCh3, ui->chkbCh4, ui->chkbCh5,
                               ui->chkbCh6, ui->chkbCh7},
        ChannelBoxes::Boards{ui->chkbInf1, ui->chkbInf2, ui->chkbInf3, ui->chkbInf4, ui->chkbInf5,
                             ui->chkbInf6});
}

sensorDebugForm::~sensorDebugForm()
{
    uartDeinit();
    ch341Deinit();
    ch347Deinit();
}

void sensorDebugForm::setupLooks()
{
    for (QSpinBox *box : {ui->spbCh341Addr, ui->spbCh341Read, ui->spbDelay})
        setFixedFont(box);
    setFixedFont(ui->leCh341Write);
    setFixedFont(ui->lbChk);
    setFixedFont(ui->txtDebugLog);
    addButtonShortcut(ui->pbtnInfConnect, int(Qt::CTRL) + Qt::Key_O);
    addButtonShortcut(ui->pbtnCh341Write, int(Qt::CTRL) + Qt::Key_Return);
    addButtonShortcut(ui->pbtnCh341Read, int(Qt::CTRL) + Qt::Key_R);
    addButtonShortcut(ui->pbtnCh341WR, int(Qt::CTRL) + Qt::SHIFT + Qt::Key_Return);
    addButtonShortcut(ui->pbtnDebugLogClear, int(Qt::CTRL) + Qt::Key_L);
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
    choose(Kind::Ch341, {QStringLiteral("20K"), QStringLiteral("100K"), QStringLiteral("400K")});
}

void sensorDebugForm::chooseCh347()
{
    choose(Kind::Ch347, {QStringLiteral("100K"), QStringLiteral("400K"), QStringLiteral("750K")});
}

void sensorDebugForm::chooseUart()
{
    choose(Kind::Serial, {QStringLiteral("115200"), QStringLiteral("460800"), QStringLiteral("921600")});
}

void sensorDebugForm::choose(Kind kind, const QStringList &speeds)
{
    if (m_link && m_link->kind() == kind)
        return;
    ui->cbbDevSpeed->clear();
    ui->cbbDevSpeed->addItems(speeds);
    makeLink(kind);
    ui->gpbPca->setEnabled(m_link->isBridge());
    if (!m_link->isBridge())
        m_link->scan();
}

bool sensorDebugForm::isChosen(Kind kind) const
{
    switch (kind) {
    case Kind::Ch341:
        return ui->rbtnIIC->isChecked();
    case Kind::Ch347:
        return ui->rbtnIICCh347->isChecked();
    case Kind::Serial:
        break;
    }
    return ui->rbtnUart->isChecked();
}

void sensorDebugForm::makeLink(Kind kind)
{
    if (m_link)
        release(m_link->kind());
    m_link = std::make_unique<SensorLink>(kind, nullptr, [this, kind] { return isChosen(kind); });
    connect(m_link.get(), &SensorLink::opened, this, &sensorDebugForm::linkUp);
    connect(m_link.get(), &SensorLink::closed, this, &sensorDebugForm::linkDown);
    connect(m_link.get(), &SensorLink::devicesListed, this,
            [this](const QStringList &devices) { refillDeviceBox(ui->cbbDevInf, devices); });
}

void sensorDebugForm::release(Kind kind)
{
    if (!m_link || m_link->kind() != kind)
        return;
    m_link->close();
    m_link.reset();
}

void sensorDebugForm::uartInit()
{
    makeLink(Kind::Serial);
}

void sensorDebugForm::ch341Init()
{
    makeLink(Kind::Ch341);
}

void sensorDebugForm::ch347Init()
{
    makeLink(Kind::Ch347);
}

void sensorDebugForm::uartDeinit()
{
    release(Kind::Serial);
}

void sensorDebugForm::ch341Deinit()
{
    release(Kind::Ch341);
}

void sensorDebugForm::ch347Deinit()
{
    release(Kind::Ch347);
}

void sensorDebugForm::pcaReset()
{
    if (m_link)
        m_link->pcaReset();
}

/// Also when the link comes back by itself, from another index.
void sensorDebugForm::linkUp()
{
    showConnected(true);
    if (!m_link->isBridge())
        return;
    // The rows of the CH347 leave the slowest speed out.
    const int slowest = m_link->kind() == Kind::Ch347 ? 1 : 0;
    m_link->setUpBusAtSpeed(static_cast<BusSpeed>(ui->cbbDevSpeed->currentIndex() + slowest));
    pcaReset();
    if (m_link->kind() == Kind::Ch347)
        qDebug("ch347 connect");
}

void sensorDebugForm::linkDown()
{
    if (m_link->kind() == Kind::Ch347)
        qDebug("ch347 disconnect");
    showConnected(false);
}

void sensorDebugForm::toggleConnection()
{
    if (ui->pbtnInfConnect->text() == QObject::tr("断开")) {
        if (m_link)
            m_link->close();
        showConnected(false);
        return;
    }
    const QString device = ui->cbbDevInf->currentText();
    if (!device.isEmpty() && m_link && m_link->open(device, ui->cbbDevSpeed->currentText().toUInt()))
        showConnected(true);
}

void sensorDebugForm::showConnected(bool connected)
{
    ui->pbtnInfConnect->setText(connected ? QObject::tr("断开") : QObject::tr("连接"));
}

void sensorDebugForm::setChannels()
{
    const uint8_t mask = m_channels->mask();
    qDebug("set pca:%d", mask);
    if (isLinkOpen() && m_link->isBridge())
        m_link->write(kPca9548Address, &mask, 1);
}

void sensorDebugForm::getChannels()
{
    uint8_t mask = 0;
    if (m_link)
        m_link->read(kPca9548Address, &mask, 1);
    qDebug("get pca:%d", mask);
    m_channels->show(mask);
}

void sensorDebugForm::showSum(const QString &hexText)
{
    const uint16_t sum = frameSum(bytesFromHexText(hexText));
    ui->lbChk->setText(QString::asprintf("%02x%02x", sum & 0xFF, sum >> 8));
}

void sensorDebugForm::writeBytes()
{
    if (isBridgeChosen() && !isLinkOpen()) {
        Q_EMIT si_appendDebugLog(notConnectedEntry());
        return;
    }
    const auto address = static_cast<uint8_t>(ui->spbCh341Addr->value());
    QByteArray bytes = typedBytes();
    if (isBridgeChosen())
        m_link->write(address, bytes);
    else
        writeSerial(address, bytes);
    Q_EMIT si_appendDebugLog(writeEntry(address, bytes));
}

QByteArray sensorDebugForm::typedBytes() const
{
    QByteArray bytes = bytesFromHexText(ui->leCh341Write->text());
    if (ui->chkbtnChk->isChecked()) {
        const QString sum = ui->lbChk->text();
        bytes.append(byteOfDigits(sum, 0));
        bytes.append(byteOfDigits(sum, 2));
    }
    return bytes;
}

void sensorDebugForm::writeSerial(uint8_t address, QByteArray &bytes)
{
    if (bytes.size() > kAddressAt)
        bytes[kAddressAt] = static_cast<char>(address);
    if (ui->chkbtnChk->isChecked() && bytes.size() >= kShortestSealed)
        sealFrame(bytes);
    if (!isLinkOpen())
        return;
    m_link->port()->clear();
    m_link->port()->write(bytes);
}

void sensorDebugForm::readBytes()
{
    if (isBridgeChosen() && !isLinkOpen()) {
        Q_EMIT si_appendDebugLog(notConnectedEntry());
        return;
    }
    const auto address = static_cast<uint8_t>(ui->spbCh341Addr->value());
    Q_EMIT si_appendDebugLog(readEntry(address, isBridgeChosen() ? bytesOfBridge(address) : bytesOfPort()));
}

QByteArray sensorDebugForm::bytesOfBridge(uint8_t address)
{
    QByteArray bytes(ui->spbCh341Read->value(), '\0');
    const int got = m_link->read(address, reinterpret_cast<uint8_t *>(bytes.data()), bytes.size());
    if (got == 0 && m_link->kind() == Kind::Ch347)
        bytes.clear();
    return bytes;
}

QByteArray sensorDebugForm::bytesOfPort()
{
    return isLinkOpen() ? m_link->port()->readAll() : QByteArray();
}

void sensorDebugForm::writeAndRead()
{
    if (m_waitsToRead)
        return;
    const QPointer<SensorLink> writtenTo = m_link.get();
    if (!isLinkOpen()) {
        Q_EMIT si_appendDebugLog(notConnectedEntry());
        return;
    }
    Q_EMIT ui->pbtnCh341Write->clicked();

    const QPointer<sensorDebugForm> self = this;
    m_waitsToRead = true;
    spinEvents(std::chrono::milliseconds(ui->spbDelay->value()));
    if (!self)
        return;
    m_waitsToRead = false;
    if (writtenTo && writtenTo == m_link.get() && isLinkOpen())
        Q_EMIT ui->pbtnCh341Read->clicked();
    else
        Q_EMIT si_appendDebugLog(notConnectedEntry());
}

void sensorDebugForm::appendLog(const QString &text)
{
    ui->txtDebugLog->moveCursor(QTextCursor::End);
    ui->txtDebugLog->insertPlainText(stampedEntry(QDateTime::currentDateTime(), text));
    ui->txtDebugLog->moveCursor(QTextCursor::End);
}
