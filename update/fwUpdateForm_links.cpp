// The page's links: choosing an interface, opening and closing it, reading and writing through it.

#include "update/fwUpdateForm.h"

#include "link/SerialPortPoller.h"
#include "link/class_ch341.h"
#include "link/class_ch347.h"
#include "link/class_uart.h"
#include "link/device_ids.h"
#include "link/forms/device_box.h"
#include "link/pca9548.h"

#include "ui_fwUpdateForm.h"

#include <QButtonGroup>

namespace {

template<typename Speed>
Speed speedOfRow(int row)
{
    switch (row) {
    case 1:
        return Speed::Khz400;
    case 2:
        return Speed::Khz750;
    default:
        return Speed::Khz100;
    }
}

const uint8_t *rawBytes(const QByteArray &data)
{
    return reinterpret_cast<const uint8_t *>(data.constData());
}

} // namespace

void fwUpdateForm::initInterfaces()
{
    auto *group = new QButtonGroup(this);
    for (QRadioButton *button : {ui->rbtnIIC, ui->rbtnIICCh347, ui->rbtnUart})
        group->addButton(button);
    connect(ui->rbtnIIC, &QRadioButton::clicked, this, &fwUpdateForm::ch341Chosen);
    connect(ui->rbtnIICCh347, &QRadioButton::clicked, this, &fwUpdateForm::ch347Chosen);
    connect(ui->rbtnUart, &QRadioButton::clicked, this, &fwUpdateForm::uartChosen);
    connect(ui->cbbIICSpeed, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this](int row) {
        if (row >= 0 && ui->rbtnIIC->isChecked() && m_ch341 != nullptr && m_ch341->isOpen())
            m_ch341->setIICSpeed(static_cast<ch341_iic_speed_te>(row));
    });
}

bool fwUpdateForm::isBridgeChosen() const
{
    return ui->rbtnIIC->isChecked() || ui->rbtnIICCh347->isChecked();
}

void fwUpdateForm::ch341Chosen()
{
    showBridgeBoxes();
    ch347Deinit();
    uartDeinit();
    ch341Init();
}

void fwUpdateForm::ch347Chosen()
{
    showBridgeBoxes();
    ch341Deinit();
    uartDeinit();
    ch347Init();
}

void fwUpdateForm::uartChosen()
{
    showSerialBoxes();
    ch341Deinit();
    ch347Deinit();
    uartInit();
    m_uart->scan(false);
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

void fwUpdateForm::ch341Init()
{
    ch341Deinit();
    m_ch341 = new class_ch341(this);
    connect(m_ch341, &class_ch341::si_connected, this, &fwUpdateForm::ch341Connected);
    connect(m_ch341, &class_ch341::si_updateList, this, [this](const QVector<uint16_t> &ids) {
        if (ui->rbtnIIC->isChecked())
            refillDeviceBox(ui->cbbUpdateDevList, deviceIdTexts(ids));
    });
}

void fwUpdateForm::ch347Init()
{
    ch347Deinit();
    m_ch347 = new class_ch347(this);
    connect(m_ch347, &class_ch347::si_connected, this, &fwUpdateForm::ch347Connected);
    connect(m_ch347, &class_ch347::si_updateList, this, [this](const QVector<uint16_t> &ids) {
        if (ui->rbtnIICCh347->isChecked())
            refillDeviceBox(ui->cbbUpdateDevList, deviceIdTexts(ids));
    });
}

void fwUpdateForm::uartInit()
{
    uartDeinit();
    m_uart = new class_uart(this);
    auto *poller = new SerialPortPoller(m_uart, [this] { return ui->rbtnUart->isChecked(); });
    connect(poller, &SerialPortPoller::portsListed, this,
            [this](const QStringList &names) { refillDeviceBox(ui->cbbUpdateDevList, names); });
}

void fwUpdateForm::ch341Deinit()
{
    if (m_ch341 == nullptr)
        return;
    m_ch341->close();
    delete m_ch341;
    m_ch341 = nullptr;
}

void fwUpdateForm::ch347Deinit()
{
    if (m_ch347 == nullptr)
        return;
    m_ch347->close();
    delete m_ch347;
    m_ch347 = nullptr;
}

void fwUpdateForm::uartDeinit()
{
    if (m_uart == nullptr)
        return;
    m_uart->close();
    delete m_uart;
    m_uart = nullptr;
}

void fwUpdateForm::ch341Connected()
{
    setUpBusAtSpeed(*m_ch341, speedOfRow<ch341_iic_speed_te>(ui->cbbIICSpeed->currentIndex()));
    pcaReset();
}

void fwUpdateForm::ch347Connected()
{
    setUpBusAtSpeed(*m_ch347, speedOfRow<ch347_iic_speed_te>(ui->cbbIICSpeed->currentIndex()));
    pulsePcaReset(*m_ch347);
    pcaReset();
}

void fwUpdateForm::pcaReset()
{
    if (m_ch341 != nullptr)
        ::pcaReset(*m_ch341);
    if (m_ch347 != nullptr)
        ::pcaReset(*m_ch347);
}

bool fwUpdateForm::openLink()
{
    const QString device = ui->cbbUpdateDevList->currentText();
    if (m_ch341 != nullptr)
        return m_ch341->open(device.toUShort());
    if (m_ch347 != nullptr)
        return m_ch347->open(device.toUShort());
    return m_uart != nullptr && m_uart->open(device, ui->cbbInfIdx->currentText().toUInt());
}

void fwUpdateForm::closeLink()
{
    pcaReset();
    if (m_ch341 != nullptr)
        m_ch341->close();
    if (m_ch347 != nullptr)
        m_ch347->close();
    if (m_uart != nullptr)
        m_uart->close();
}

bool fwUpdateForm::selectChannel()
{
    if (m_uart != nullptr)
        return true;
    const int row = ui->cbbInfIdx->currentIndex();
    if (row <= 0) {
        ui->lbRes->setText(QObject::tr("IIC总线芯片(PCA9548)接口错误"));
        return true;
    }
    const uint8_t mask = adapterBoardMask(row);
    bridgeWrite(kPca9548Address, QByteArray(1, static_cast<char>(mask)), 1);
    const uint8_t state = readSelectedChannels();
    if (state == mask)
        return true;
    qDebug("state:%x", state);
    qDebug("%d", __LINE__);
    ui->lbRes->setText(QObject::tr("IIC总线芯片(PCA9548)设置失败"));
    return false;
}

uint8_t fwUpdateForm::readSelectedChannels()
{
    uint8_t state = 0;
    if (m_ch341 != nullptr)
        m_ch341->read(kPca9548Address, &state, 1);
    if (m_ch347 != nullptr)
        m_ch347->read(kPca9548Address, &state, 1);
    return state;
}

void fwUpdateForm::bridgeWrite(uint8_t addr, const QByteArray &frame, uint16_t len)
{
    if (m_ch341 != nullptr)
        m_ch341->write(addr, rawBytes(frame), len);
    if (m_ch347 != nullptr)
        m_ch347->write(addr, rawBytes(frame), len);
}

void fwUpdateForm::sensorWrite(uint8_t addr, QByteArray frame, uint16_t len)
{
    bridgeWrite(addr, frame, len);
    if (m_uart != nullptr && m_uart->port->isOpen())
        m_uart->port->write(frame);
    qDebug("write:%d--%s", frame.size(), frame.toHex().constData());
}

void fwUpdateForm::sensorRead(uint8_t addr, QByteArray *out, uint16_t len, uint16_t /*wait*/)
{
    QByteArray buffer(len, '\0');
    auto *bytes = reinterpret_cast<uint8_t *>(buffer.data());
    if (m_ch341 != nullptr)
        m_ch341->read(addr, bytes, len);
    if (m_ch347 != nullptr)
        m_ch347->read(addr, bytes, len);
    if (m_ch341 != nullptr || m_ch347 != nullptr)
        out->append(buffer);
    if (m_uart != nullptr && m_uart->port->isOpen())
        out->append(m_uart->port->readAll());
    qDebug("read:%d--%s", out->size(), out->toHex().constData());
}
