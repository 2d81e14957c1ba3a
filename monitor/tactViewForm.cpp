#include "monitor/tactViewForm.h"

#include "ui_tactViewForm.h"

#include "app/class_settings.h"
#include "engine/fingerThread.h"
#include "monitor/folder_opener.h"
#include "panel/recording_folder.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProcess>
#include <QSplitter>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <QTreeWidget>

#include <array>
#include <chrono>

namespace {

constexpr int kBusCount = 6;
constexpr int kDefaultInterface = 1;
constexpr int kTreeIndentation = 14;
constexpr int kTreeWidth = 100;
constexpr int kAreaWidth = 400;
/// Lets the device settle between two interfaces.
constexpr std::chrono::milliseconds kRestartMs{500};

constexpr const char *kLanguageKey = "language";
constexpr const char *kLanguageFile = "config";
/// Stored names of the languages, in the order of the box.
constexpr std::array<const char *, 2> kLanguages = {"zh_cn", "en"};

/// Says in a tool tip what the tree is too narrow to show.
class TreeItemDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override
    {
        const QRect place = view->visualRect(index);
        const int end = place.left() + sizeHint(option, index).width();
        const bool fits = place.left() >= 0 && end <= view->viewport()->width();
        QToolTip::showText(event->globalPos(), fits ? QString() : index.data().toString(), view->viewport(),
                           place);
        return true;
    }
};

} // namespace

tactViewForm::tactViewForm(QWidget *parent)
    : QWidget(parent)
    , ui(new Ui::tactViewForm)
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
    delete splitter;
    delete ui;
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
    wireControls();
    thread = new QThread(this);
    buildWorkArea();
    sensorTreeInit();
}

void tactViewForm::wireControls()
{
    m_restart.setSingleShot(true);
    m_restart.setInterval(kRestartMs);
    connect(&m_restart, &QTimer::timeout, this, &tactViewForm::start);
    connect(ui->pbtnCh341Connect, &QPushButton::clicked, this, &tactViewForm::connectOrDisconnect);
    connect(ui->cbbSensorInf, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &tactViewForm::changeInterface);
    connect(ui->pbtnOpenSaveDir, &QPushButton::clicked, this, [] { openFolder(recordingFolder()); });
    connect(ui->chkbtnMdiMode, &QCheckBox::clicked, this, &tactViewForm::setMultiWindow);
    connect(ui->spbReadIntTime, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this](int ms) { Q_EMIT si_setReadIntTime(static_cast<unsigned short>(ms)); });
}

void tactViewForm::buildWorkArea()
{
    splitter = new QSplitter(Qt::Horizontal, this);
    tree = new QTreeWidget(splitter);
    tree->setHeaderHidden(true);
    tree->setIndentation(kTreeIndentation);
    tree->setItemDelegate(new TreeItemDelegate(tree));
    tree->header()->setStretchLastSection(false);
    mdi = new QMdiArea(splitter);
    mdi->setViewMode(QMdiArea::TabbedView);
    mdi->setTabsClosable(false);
    mdi->setDocumentMode(true);
    splitter->setSizes({kTreeWidth, kAreaWidth});
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    ui->lyWorkArea->addWidget(splitter);
    connect(tree, &QTreeWidget::itemClicked, this, &tactViewForm::showSensorOf);
    const auto fitTree = [this] { tree->resizeColumnToContents(0); };
    connect(tree, &QTreeWidget::expanded, this, fitTree);
    connect(tree, &QTreeWidget::collapsed, this, fitTree);
}

void tactViewForm::sensorTreeInit()
{
    for (int i = 1; i <= kBusCount; ++i)
        tree->addTopLevelItem(new QTreeWidgetItem({QObject::tr("接口") + QString::number(i)}));
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
                    [this](const sensor_ts &sensor) { addSensor(sensor); });
    // Heard of a stopped worker too: this is how its panels go.
    connect(worker, &fingerThread::si_disconnectedSensor, this, &tactViewForm::removeSensor);
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

void tactViewForm::setMultiWindow(bool multiWindow)
{
    mdi->setViewMode(multiWindow ? QMdiArea::SubWindowView : QMdiArea::TabbedView);
    if (multiWindow)
        tileToFullHeight();
}

void tactViewForm::tileToFullHeight()
{
    mdi->tileSubWindows();
    for (QMdiSubWindow *window : mdi->subWindowList())
        window->setGeometry(window->x(), window->y(), window->width(), mdi->height());
}
