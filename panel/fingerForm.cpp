#include "panel/fingerForm.h"

#include "ui_fingerForm.h"

#include "engine/cmd_ts.h"
#include "panel/CalibrationPage.h"
#include "panel/ChannelTable.h"
#include "panel/ParameterPage.h"
#include "panel/ValuePage.h"
#include "protocol/finger_info.h"
#include "protocol/payloads.h"
#include "recording/recording_folder.h"
#include "views/class_finger.h"
#include "views/models/view_factory.h"

#include <QDebug>
#include <QPointer>
#include <QStyle>

#include <algorithm>

namespace {

constexpr int kInfoPage = 0;
constexpr int kCalibrationPage = 3;
constexpr uint8_t kUnknownPrg = 0xFF;
constexpr uint16_t kVersionLength = 25;
constexpr uint16_t kShortAnswerLength = 11;
constexpr int kSerialNumberMax = 50;

// A scroll area brings a background of its own, which is not that of a page.
void letPageShowThrough(QScrollArea *area)
{
    area->viewport()->setAutoFillBackground(false);
    area->widget()->setAutoFillBackground(false);
}

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

QString textAt(const QByteArray &frame, int position, int length)
{
    return QString::fromUtf8(frame.mid(position, length));
}

} // namespace

fingerForm::fingerForm(unsigned char inf, unsigned char address, QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::fingerForm>())
    , infIdx(inf)
    , addr(address)
    , m_port([this](const QByteArray &frame, uint16_t rspLen) {
        Q_EMIT si_cmdReq1(infIdx, addr, frame, rspLen);
    })
    , m_recorder(recordingFolder(), inf, address)
{
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    hideWhatIsNotOffered();
    for (QScrollArea *area : {ui->sawgDataList, ui->scrollArea})
        letPageShowThrough(area);
    m_channels = std::make_unique<ChannelTable>(ui->tbwThreshold, ui->pbtnGetThreshold, m_port);
    m_calibration = std::make_unique<CalibrationPage>(*ui, m_port, *m_channels);
    m_parameters = std::make_unique<ParameterPage>(*ui, m_port, *m_channels);
    m_values = std::make_unique<ValuePage>(ui->sawgDataList, ui->lyDataList, m_port);
    addAnswers();
    ui->tabWidget->setCurrentIndex(kInfoPage);
    connect(ui->tabWidget, &QTabWidget::currentChanged, m_parameters.get(),
            &ParameterPage::requestTypeOfPage);
    connect(ui->chkbtnShowData, &QCheckBox::clicked, this, [this] {
        if (ff)
            ff->setShowData(ui->chkbtnShowData->isChecked());
    });
    sl_reset(inf, address);
}

fingerForm::~fingerForm()
{
    sl_reset(infIdx, addr);
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

void fingerForm::addAnswers()
{
    const auto show = [this](Command command, auto &page, auto handler) {
        m_answers.add(command,
                      [&page, handler](const QByteArray &, const QByteArray &rsp) { (page.*handler)(rsp); });
    };
    const auto tell = [this](Command command, auto &page, auto handler) {
        m_answers.add(command, [&page, handler](const QByteArray &req, const QByteArray &rsp) {
            (page.*handler)(req, rsp);
        });
    };
    show(Command::GetThreshold, *m_channels, &ChannelTable::showThreshold);
    show(Command::GetExcitation, *m_channels, &ChannelTable::showExcitation);
    show(Command::GetRange, *m_channels, &ChannelTable::showRange);
    show(Command::GetFilter, *m_channels, &ChannelTable::showFilter);
    show(Command::GetTimeout, *m_channels, &ChannelTable::showTimeout);
    show(Command::GetDac, *m_channels, &ChannelTable::showDac);
    tell(Command::SetExcitation, *m_channels, &ChannelTable::acknowledgeAndReread);
    tell(Command::SetRange, *m_channels, &ChannelTable::acknowledgeAndReread);
    show(Command::GetCalibrationForces, *m_calibration, &CalibrationPage::showForces);
    tell(Command::GetCalibration, *m_calibration, &CalibrationPage::showCurve);
    show(Command::GetCalibrationState, *m_calibration, &CalibrationPage::showState);
    show(Command::GetAutoDacPowerUp, *m_parameters, &ParameterPage::showAutoDacPowerUp);
    show(Command::GetPressReleaseThreshold, *m_parameters, &ParameterPage::showPressReleaseThreshold);
    show(Command::GetProxReleaseThreshold, *m_parameters, &ParameterPage::showProxReleaseThreshold);
    show(Command::GetProxClearTouch, *m_parameters, &ParameterPage::showProxClearTouch);
    show(Command::GetTemperature, *m_parameters, &ParameterPage::showTemperature);
    show(Command::GetVersion, *this, &fingerForm::showVersion);
    show(Command::GetSerialNumber, *this, &fingerForm::showSerialNumber);
    show(Command::GetProgram, *this, &fingerForm::showProgram);
    show(Command::GetRunTime, *this, &fingerForm::showRunTime);
    // Nobody looks at the numbers.
    m_answers.add(Command::GetSensorNum, [](const QByteArray &, const QByteArray &) {});
}

void fingerForm::sl_reset(uint8_t inf, uint8_t address)
{
    if (!isMine(inf, address))
        return;
    m_recorder.endRun();
    warnOfLostSample(false);
    for (QLabel *label :
         {ui->lbVersionTime, ui->lbVersionDate, ui->lbVersion, ui->lbSN, ui->lbAddr, ui->lbHz, ui->lbType})
        label->clear();
    ui->gpbTitle->setTitle(QString());
    // The view is decoder and widget in one object.
    delete dynamic_cast<QWidget *>(ff);
    ff = nullptr;
    m_port.forgetChannels();
    m_parameters->reset();
    m_channels->clear();
    m_calibration->clear();
    m_values->clearSensorChannelWg();
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
    m_port.close();
    const QPointer<fingerForm> self(this);
    const bool known = (info.prg != kUnknownPrg || guessProgram(info)) && buildView(info.prg);
    if (!self)
        return;
    offerParameters(known);
    if (!known)
        return;
    const finger_info_ts *model = ff->info;
    m_port.open(info.type, model ? model->chNum : 0);
    if (model)
        m_values->addCells(*model);
    m_channels->setup();
    m_calibration->setModel(model);
    if (model)
        qDebug("%s", model->name);
    askSensor(info);
    ff->setShowData(ui->chkbtnShowData->isChecked());
}

// Nothing on these pages does anything for a sensor of an unknown model.
void fingerForm::offerParameters(bool offered)
{
    for (QWidget *page : {ui->tab_4, ui->tab_3})
        ui->tabWidget->setTabEnabled(ui->tabWidget->indexOf(page), offered);
}

// False when there is no view for the program id, and when the panel did not outlive the box that a view
// without a catalogue row opens.
bool fingerForm::buildView(uint8_t program)
{
    const QPointer<fingerForm> self(this);
    class_finger *built = makeView(program, this);
    if (!self || !built)
        return false;
    ff = built;
    ui->gl->addWidget(dynamic_cast<QWidget *>(ff));
    connect(&ff->signals, &class_fingerSignals::si_dataUpdate, m_values.get(),
            [this] { m_values->show(ff->dataList); });
    return true;
}

void fingerForm::askSensor(const sensor_ts &info)
{
    getVersion();
    getPrg();
    getSN();
    ui->lbAddr->setText(QString::asprintf("0x%02X", info.addr));
    ui->lbType->setText(QString::number(info.type));
    m_parameters->start(info.addr);
    // Makes the first page current and asks for forces, the last thing that goes out.
    Q_EMIT ui->tabWidget->currentChanged(kInfoPage);
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
    // The decoder keeps nothing of the frame, so it may look at it where it is. What it refuses is sent and
    // recorded like the sample before.
    ff->parseData(QByteArray::fromRawData(reinterpret_cast<const char *>(pack.constData()), pack.size()));
    Q_EMIT si_sendDataStrList(infIdx, addr, ff->dataList);
    save();
}

void fingerForm::save()
{
    if (ui->chkbtnSave->checkState() == Qt::Checked) {
        warnOfLostSample(!m_recorder.append(ff->sample()));
    } else {
        m_recorder.endRun();
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

void fingerForm::sl_cmdRsp(uint8_t inf, uint8_t address, QByteArray req, QByteArray rsp)
{
    if (isMine(inf, address))
        m_answers.take(req, rsp);
}

void fingerForm::sl_cmdRspErr(uint8_t, uint8_t, QByteArray, QByteArray) {}

void fingerForm::showVersion(const QByteArray &rsp)
{
    ui->lbVersionDate->setText(textAt(rsp, 4, 11));
    ui->lbVersionTime->setText(textAt(rsp, 15, 8));
}

void fingerForm::showSerialNumber(const QByteArray &rsp)
{
    const int length = FrameReader(rsp).byteAt(kPayloadAt);
    ui->lbSN->setText(textAt(rsp, kPayloadAt + 1, std::min(length, kSerialNumberMax)));
}

void fingerForm::showProgram(const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    const uint8_t majorVersion = reader.byteAt(4);
    const uint8_t minorVersion = reader.byteAt(5);
    ui->lbVersion->setText(QString::asprintf("%d.%d.%d", majorVersion, minorVersion, reader.byteAt(6)));
    m_calibration->setFirmware(majorVersion, minorVersion);
}

void fingerForm::showRunTime(const QByteArray &rsp)
{
    ui->lbRunTime->setText(QString::number(FrameReader(rsp).u32At(5)));
}

void fingerForm::getVersion()
{
    m_port.request(Command::GetVersion, {}, kVersionLength);
}

void fingerForm::getPrg()
{
    m_port.request(Command::GetProgram, {}, kShortAnswerLength);
}

void fingerForm::getSN()
{
    m_port.request(Command::GetSerialNumber, {}, kUnknownResponse);
}

void fingerForm::getSensorNum()
{
    m_port.request(Command::GetSensorNum, {}, kShortAnswerLength);
}

void fingerForm::getDac()
{
    m_port.requestPerChannel(Command::GetDac, 4);
}

void fingerForm::getProxClearTouch()
{
    m_port.request(Command::GetProxClearTouch);
}

void fingerForm::getAutoDacPowerUp()
{
    m_port.request(Command::GetAutoDacPowerUp);
}

void fingerForm::getReleaseThreshold()
{
    m_port.request(Command::GetPressReleaseThreshold);
    m_port.request(Command::GetProxReleaseThreshold);
}

void fingerForm::setMode(unsigned char mode)
{
    m_parameters->setMode(mode);
}

void fingerForm::getCaliNList()
{
    m_calibration->getCaliNList();
}

void fingerForm::getCaliCh(unsigned char ch)
{
    m_calibration->getCaliCh(ch);
}

void fingerForm::getCaliState()
{
    m_calibration->getCaliState();
}

void fingerForm::setCaliCh(unsigned char ch, const QVector<unsigned int> &curve)
{
    m_calibration->setCaliCh(ch, curve);
}

void fingerForm::setThreshold(const QVector<unsigned int> &values)
{
    m_channels->setThreshold(values);
}

void fingerForm::setTimeout(const QVector<unsigned int> &values)
{
    m_channels->setTimeout(values);
}

void fingerForm::setExcF(const QVector<unsigned char> &values)
{
    m_channels->setExcF(values);
}

void fingerForm::setRange(const QVector<unsigned char> &values)
{
    m_channels->setRange(values);
}

void fingerForm::setFilter(const QVector<unsigned char> &first, const QVector<unsigned char> &second,
                           const QVector<float> &third)
{
    m_channels->setFilter(first, second, third);
}

void fingerForm::setDac(const QVector<unsigned char> &first, const QVector<unsigned char> &second,
                        const QVector<unsigned short> &third)
{
    m_channels->setDac(first, second, third);
}
