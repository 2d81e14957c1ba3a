#include "monitor/tactViewForm.h"

#include "ui_tactViewForm.h"

#include "app/class_settings.h"
#include "engine/fingerThread.h"
#include "monitor/PanelArea.h"
#include "monitor/PlotOutput.h"
#include "monitor/folder_opener.h"
#include "panel/fingerForm.h"
#include "recording/recording_folder.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRegExpValidator>

#include <array>
#include <chrono>

namespace {

constexpr int kDefaultInterface = 1;
/// Lets the device settle between two interfaces.
constexpr std::chrono::milliseconds kRestartDelay{500};

constexpr const char *kLanguageKey = "language";
constexpr const char *kLanguageFile = "config";
/// Stored names of the languages, in the order of the box.
constexpr std::array<const char *, 2> kLanguages = {"zh_cn", "en"};

} // namespace

tactViewForm::tactViewForm(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::tactViewForm>())
    , m_startProcess([](const QString &program) { return QProcess::startDetached(program, {}); })
{
    ui->setupUi(this);
    qDebug("tactViewForm new");
    hideWhatIsNotOffered();
    init();
}

tactViewForm::~tactViewForm()
{
    stop();
    // Signals of the panels lead here, so the panels go while everything is still here.
    delete m_area;
}

void tactViewForm::hideWhatIsNotOffered()
{
    for (QWidget *widget : std::initializer_list<QWidget *>{ui->pbHand, ui->groupBox_5, ui->chkbtnSave,
                                                            ui->groupBox_9, ui->label_5, ui->spbTcpFingerIdx})
        widget->hide();
}

void tactViewForm::init()
{
    qDebug("tactViewForm init");
    ui->cbbSensorInf->setCurrentIndex(kDefaultInterface);
    tcpInit();
    registerSensorTypes();
    thread = new QThread(this);
    m_area = new PanelArea([this](uint8_t infIdx, uint8_t addr) { return newPanel(infIdx, addr); }, this);
    ui->lyWorkArea->addWidget(m_area);
    wireControls();
}

void tactViewForm::wireControls()
{
    m_restart.setSingleShot(true);
    m_restart.setInterval(kRestartDelay);
    connect(&m_restart, &QTimer::timeout, this, &tactViewForm::start);
    connect(ui->pbtnCh341Connect, &QPushButton::clicked, this, &tactViewForm::connectOrDisconnect);
    connect(ui->cbbSensorInf, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &tactViewForm::changeInterface);
    connect(ui->pbtnOpenSaveDir, &QPushButton::clicked, this, [] { openFolder(recordingFolder()); });
    connect(ui->chkbtnMdiMode, &QCheckBox::clicked, m_area, &PanelArea::setMultiWindow);
    connect(ui->spbReadIntTime, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this](int ms) { Q_EMIT si_setReadIntTime(static_cast<unsigned short>(ms)); });
}

void tactViewForm::tcpInit()
{
    m_plot = new PlotOutput(this);
    ui->leServiceAddr->setText(PlotOutput::storedAddress());
    ui->spbServicePort->setValue(PlotOutput::storedPort());
    const QRegExp dottedQuad(QStringLiteral("\\b(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\\.){3}"
                                            "(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\\b"));
    ui->leServiceAddr->setValidator(new QRegExpValidator(dottedQuad, ui->leServiceAddr));
    connect(m_plot, &PlotOutput::connectedChanged, this, [this](bool connected) {
        ui->pbtnServiceConnect->setText(connected ? QObject::tr("断开") : QObject::tr("连接"));
    });
    connect(ui->pbtnServiceConnect, &QPushButton::clicked, m_plot,
            [this] { m_plot->connectOrDisconnect(ui->leServiceAddr->text(), ui->spbServicePort->value()); });
}

void tactViewForm::tcpSend()
{
    m_plot->send(static_cast<TcpFormat>(ui->cbbTcpDataFormat->currentIndex()), m_area->activeDecoder());
}

void tactViewForm::start()
{
    if (worker)
        return;
    qDebug("tactViewForm start");
    ++m_run;
    worker = new fingerThread(static_cast<uint8_t>(ui->cbbSensorInf->currentIndex()), nullptr);
    wireWorker();
    worker->moveToThread(thread);
    wireThread();
    thread->start(QThread::InheritPriority);
    restoreLanguage();
}

void tactViewForm::stop()
{
    qDebug("tactViewForm stop");
    m_restart.stop();
    Q_EMIT si_workerThreadStop();
    thread->quit();
    thread->wait();
    // Deleted by its thread, whose end has just been awaited.
    worker = nullptr;
    ++m_run;
    showConnected(false);
}

/// Connects a signal of the worker to a handler that hears it only as long as this worker is the present one.
template<typename Signal, typename Handler>
void tactViewForm::onPresentWorker(Signal signal, Handler handler)
{
    connect(worker, signal, this, [this, run = m_run, handler](const auto &...arguments) {
        if (run == m_run)
            handler(arguments...);
    });
}

void tactViewForm::wireWorker()
{
    onPresentWorker(&fingerThread::si_ch341Connected, [this] { showConnected(true); });
    onPresentWorker(&fingerThread::si_ch341Disconnected, [this] { showConnected(false); });
    onPresentWorker(&fingerThread::si_ch341ListUpdate,
                    [this](const QVector<QString> &names) { showDevices(names); });
    onPresentWorker(&fingerThread::si_connectedSensor,
                    [this](const sensor_ts &sensor) { m_area->addSensor(sensor); });
    // Heard of a stopped worker too: this is how its panels go.
    connect(worker, &fingerThread::si_disconnectedSensor, m_area, &PanelArea::removeSensor);
    onPresentWorker(&fingerThread::si_exit, [this] { showConnected(false); });
}

void tactViewForm::wireThread()
{
    connect(thread, &QThread::started, worker, &fingerThread::started);
    connect(this, &tactViewForm::si_workerThreadStop, worker, &fingerThread::stop);
    connect(this, &tactViewForm::si_connectCh341, worker, &fingerThread::sl_connectCh341);
    connect(this, &tactViewForm::si_disconnectCh341, worker, &fingerThread::sl_disconnectCh341);
    connect(worker, &fingerThread::si_exit, thread, &QThread::quit);
    connect(thread, &QThread::finished, worker, &fingerThread::deleteLater);
}

void tactViewForm::showConnected(bool connected)
{
    ui->pbtnCh341Connect->setText(connected ? QObject::tr("断开") : QObject::tr("连接"));
}

void tactViewForm::showDevices(const QVector<QString> &names)
{
    ui->cbbCh341List->clear();
    ui->cbbCh341List->addItems(QStringList(names.begin(), names.end()));
}

// Runs at every start and connects once more each time: a change of language after N starts has N effects.
void tactViewForm::restoreLanguage()
{
    const QString stored = class_settings::get(QLatin1String(kLanguageKey), QLatin1String(kLanguages.front()),
                                               QLatin1String(kLanguageFile));
    if (stored.isEmpty())
        ui->cbbLanguage->setCurrentIndex(0);
    for (size_t i = 0; i < kLanguages.size(); ++i)
        if (stored == QLatin1String(kLanguages.at(i)))
            ui->cbbLanguage->setCurrentIndex(static_cast<int>(i));
    connect(
        ui->cbbLanguage, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
        [this](int index) { changeLanguage(index); }, Qt::DirectConnection);
}

void tactViewForm::changeLanguage(int index)
{
    const auto language = static_cast<size_t>(index);
    if (language < kLanguages.size())
        class_settings::set(QLatin1String(kLanguageKey), QLatin1String(kLanguages.at(language)),
                            QLatin1String(kLanguageFile));
    QCoreApplication::quit();
    m_startProcess(QCoreApplication::applicationFilePath());
}

void tactViewForm::connectOrDisconnect()
{
    const QString text = ui->pbtnCh341Connect->text();
    if (text == QObject::tr("连接")) {
        if (!ui->cbbCh341List->currentText().isEmpty())
            Q_EMIT si_connectCh341(ui->cbbCh341List->currentText());
    } else if (text == QObject::tr("断开")) {
        Q_EMIT si_disconnectCh341();
    }
}

void tactViewForm::changeInterface()
{
    stop();
    m_restart.start();
}

fingerForm *tactViewForm::newPanel(uint8_t infIdx, uint8_t addr)
{
    if (!worker)
        return nullptr;
    auto *panel = new fingerForm(infIdx, addr, this);
    connect(panel, &fingerForm::si_cmdReq1, worker, &fingerThread::sl_cmdReq1);
    connect(panel, &fingerForm::si_sendDataStrList, this, &tactViewForm::tcpSend);
    connect(worker, &fingerThread::si_updateData1, panel, &fingerForm::sl_updateData);
    connect(worker, &fingerThread::si_setHz1, panel, &fingerForm::sl_setHz);
    connect(worker, &fingerThread::si_cmdRsp1, panel, &fingerForm::sl_cmdRsp);
    connect(worker, &fingerThread::si_cmdRspErr1, panel, &fingerForm::sl_cmdRspErr);
    return panel;
}
