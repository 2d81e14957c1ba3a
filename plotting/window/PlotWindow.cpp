#include "plotting/window/PlotWindow.h"

#include "plotting/PlotServer.h"
#include "plotting/window/CursorReader.h"
#include "plotting/window/CurveList.h"
#include "plotting/window/PlotNavigator.h"
#include "plotting/window/fault_text.h"
#include "plotting/window/plot_picture.h"

#include <QAction>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QSpinBox>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

using namespace std::chrono_literals;

namespace {

constexpr auto kRefreshInterval = 33ms;
constexpr auto kStatusInterval = 500ms;
constexpr int kFirstSeconds = 10;
/// Twice the longest window: a pause can be looked at with what came before it. At most 64 MB.
constexpr SampleStore::Limits kLiveLimits{2.0 * PlotWindow::kLongestSeconds, 8 * 1024 * 1024};
/// Finer than any sensor; what lies below is lost in rounding.
constexpr double kShortestStretch = 1e-3;

/// Moves and widens a stretch so that scales can be made of it.
AxisRange sensible(AxisRange range)
{
    const double least =
        std::max(kShortestStretch, 1e-9 * std::max(std::abs(range.from), std::abs(range.to)));
    constexpr double most = 4 * static_cast<double>(std::numeric_limits<float>::max());
    const double middle = std::clamp(range.from + range.length() / 2, -most, most);
    const double half = std::clamp(range.length(), least, most) / 2;
    return {middle - half, middle + half};
}

} // namespace

PlotWindow::PlotWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_plot(new CurvePlot)
    , m_list(new CurveList(m_plot))
    , m_cursor(new CursorReader(m_plot))
{
    setWindowTitle(tr("Curves"));
    resize(1100, 640);
    auto *splitter = new QSplitter;
    splitter->addWidget(m_plot);
    splitter->addWidget(m_list);
    splitter->setStretchFactor(0, 1);
    splitter->setSizes({880, 220});
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);
    setupActions();
    setupStatusBar();
    setupNavigation();
    m_clock.start();
}

PlotWindow::~PlotWindow()
{
    // The curves read from stores that go before the plot does.
    m_plot->setSources({});
}

void PlotWindow::setupActions()
{
    auto *bar = addToolBar(tr("Tools"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_pause = bar->addAction(style()->standardIcon(QStyle::SP_MediaPause), tr("Pause"));
    m_pause->setObjectName(QStringLiteral("pause"));
    m_pause->setCheckable(true);
    m_pause->setShortcut(Qt::Key_Space);
    m_pause->setToolTip(tr("Hold the picture; samples go on coming in (Space)"));
    connect(m_pause, &QAction::toggled, this, &PlotWindow::setPaused);

    auto *all = bar->addAction(style()->standardIcon(QStyle::SP_BrowserReload), tr("Show all"), this,
                               &PlotWindow::showAll);
    all->setShortcut(Qt::Key_Home);
    all->setToolTip(tr("Everything in view, and on with what comes in (Home, or a double click)"));

    auto *save = bar->addAction(style()->standardIcon(QStyle::SP_DialogSaveButton), tr("Save picture…"), this,
                                &PlotWindow::askAndSavePicture);
    save->setShortcut(QKeySequence::Save);

    bar->addSeparator();
    bar->addWidget(new QLabel(tr("Window:") + QLatin1Char(' ')));
    m_seconds = new QSpinBox;
    m_seconds->setObjectName(QStringLiteral("seconds"));
    m_seconds->setRange(kShortestSeconds, kLongestSeconds);
    m_seconds->setSuffix(tr(" s"));
    m_seconds->setValue(kFirstSeconds);
    bar->addWidget(m_seconds);
    connect(m_seconds, QOverload<int>::of(&QSpinBox::valueChanged), this, &PlotWindow::refresh);
}

void PlotWindow::setupStatusBar()
{
    m_source = new QLabel;
    m_rate = new QLabel;
    m_trouble = new QLabel;
    m_trouble->setObjectName(QStringLiteral("trouble"));
    m_trouble->setStyleSheet(QStringLiteral("color: #b3261e"));
    statusBar()->addWidget(m_source);
    statusBar()->addWidget(m_trouble, 1);
    statusBar()->addPermanentWidget(m_rate);
}

void PlotWindow::setupNavigation()
{
    auto *navigator = new PlotNavigator(m_plot);
    connect(navigator, &PlotNavigator::timesZoomed, this, &PlotWindow::zoomTimes);
    connect(navigator, &PlotNavigator::timesMoved, this, &PlotWindow::moveTimes);
    connect(navigator, &PlotNavigator::allWanted, this, &PlotWindow::showAll);
    connect(navigator, &PlotNavigator::valuesWanted, this, [this](const AxisRange &values) {
        m_plot->fixValues(sensible(values));
        refresh();
    });
    connect(m_list, &CurveList::curveToggled, this, &PlotWindow::refresh);
    connect(&m_refreshTimer, &QTimer::timeout, this, [this] {
        if (!m_pause->isChecked() && !isMinimized())
            refresh();
    });
    connect(&m_statusTimer, &QTimer::timeout, this, &PlotWindow::refreshStatus);
}

void PlotWindow::follow(PlotServer &server)
{
    m_server = &server;
    setWindowTitle(tr("Curves on port %1").arg(server.port()));
    m_plot->setEmptyText(tr("Waiting for a connection on port %1").arg(server.port()));
    connect(&server, &PlotServer::recordArrived, this, &PlotWindow::append);
    connect(&server, &PlotServer::connected, this, [this](const QString &peer) {
        m_peer = peer;
        breakCurves();
        refreshStatus();
    });
    connect(&server, &PlotServer::disconnected, this, [this] {
        m_peer.clear();
        m_stillSince = static_cast<double>(m_clock.nsecsElapsed()) * 1e-9;
        refreshStatus();
    });
    m_refreshTimer.start(kRefreshInterval);
    m_statusTimer.start(kStatusInterval);
    refresh();
    refreshStatus();
}

void PlotWindow::open(std::vector<NamedRecording> recordings)
{
    m_recordings = std::move(recordings);
    auto first = m_recordings.front().recording.start;
    for (const NamedRecording &named : m_recordings)
        first = std::min(first, named.recording.start);
    QVector<CurveSource> sources;
    QStringList names;
    QStringList troubles;
    for (const NamedRecording &named : m_recordings) {
        const Recording &recording = named.recording;
        names += named.name;
        const QString prefix =
            m_recordings.size() > 1 ? QString::number(names.size()) + QStringLiteral(": ") : QString();
        for (int i = 0; i < recording.columns.size(); ++i)
            sources.append({prefix + recording.columns.at(i), &*recording.store, i,
                            std::chrono::duration<double>(recording.start - first).count()});
        if (recording.refused > 0)
            troubles += tr("%1: %L2 lines left out").arg(named.name).arg(recording.refused);
        if (const auto kept = static_cast<quint64>(recording.store->size()); kept < recording.rows)
            troubles += tr("%1: only the last %L2 of %L3 samples are shown")
                            .arg(named.name)
                            .arg(kept)
                            .arg(recording.rows);
    }
    setWindowTitle(names.join(QStringLiteral(", ")));
    m_source->setText(names.join(QStringLiteral(", ")));
    m_trouble->setText(troubles.join(QStringLiteral("; ")));
    m_pause->setEnabled(false);
    m_seconds->setEnabled(false);
    m_plot->setStill(true);
    m_plot->setSources(sources);
    m_list->rebuild();
    m_list->refreshValues();
    showAll();
}

void PlotWindow::append(const QVector<double> &values)
{
    ++m_records;
    SampleStore *store = m_arriving ? m_arriving.get() : m_live.get();
    if (store == nullptr || store->width() != values.size()) {
        auto &fresh = m_arriving ? m_arriving : m_live;
        if (!m_arriving)
            m_plot->setSources({});
        fresh = std::make_unique<SampleStore>(values.size(), kLiveLimits);
        store = fresh.get();
        if (!m_arriving)
            showNewWidth();
    }
    store->append(static_cast<double>(m_clock.nsecsElapsed()) * 1e-9, values);
}

// A line across the time in which nobody was connected would look measured.
void PlotWindow::breakCurves()
{
    SampleStore *store = m_arriving ? m_arriving.get() : m_live.get();
    if (store != nullptr)
        store->append(static_cast<double>(m_clock.nsecsElapsed()) * 1e-9,
                      QVector<double>(store->width(), std::numeric_limits<double>::quiet_NaN()));
}

void PlotWindow::showNewWidth()
{
    QVector<CurveSource> sources;
    for (int i = 0; i < m_live->width(); ++i)
        sources.append({tr("Value %1").arg(i + 1), m_live.get(), i, 0});
    m_plot->setSources(sources);
    m_list->rebuild();
}

void PlotWindow::setPaused(bool paused)
{
    m_plot->setStill(paused);
    if (paused && m_live) {
        m_arriving = std::make_unique<SampleStore>(*m_live);
        refresh();
    } else if (m_arriving) {
        const bool isOther = m_arriving->width() != m_live->width();
        if (isOther)
            m_plot->setSources({});
        *m_live = std::move(*m_arriving);
        m_arriving.reset();
        if (isOther)
            showNewWidth();
        refresh();
    }
}

void PlotWindow::zoomTimes(AxisRange times)
{
    const bool isRunning = m_server != nullptr && !m_pause->isChecked();
    if (!isRunning) {
        m_plot->showTimes(sensible(times));
        return;
    }
    // A notch of the wheel must not be rounded away.
    const double wanted = times.length();
    const bool isWider = wanted > m_seconds->value();
    m_seconds->setValue(static_cast<int>(isWider ? std::ceil(wanted) : std::floor(wanted)));
}

void PlotWindow::moveTimes(AxisRange times)
{
    if (m_server != nullptr)
        m_pause->setChecked(true);
    m_plot->showTimes(sensible(times));
}

void PlotWindow::showAll()
{
    m_plot->fixValues({});
    if (m_server != nullptr) {
        m_pause->setChecked(false);
        refresh();
        return;
    }
    double last = kShortestStretch;
    for (const CurveSource &source : m_plot->sources())
        last = std::max(last, source.store->time(source.store->size() - 1) + source.shift);
    m_plot->showTimes({0, last});
}

double PlotWindow::now() const
{
    return m_peer.isEmpty() ? m_stillSince : static_cast<double>(m_clock.nsecsElapsed()) * 1e-9;
}

void PlotWindow::refresh()
{
    const bool isHeld = m_server == nullptr || m_arriving;
    if (!isHeld)
        m_plot->setShift(-now());
    const double seconds = m_seconds->value();
    m_plot->showTimes(isHeld ? m_plot->times() : AxisRange{-seconds, 0});
    m_cursor->refresh();
}

void PlotWindow::refreshStatus()
{
    const QString waiting = tr("Waiting on port %1").arg(m_server->port());
    m_source->setText(m_peer.isEmpty() ? waiting : tr("Connected to %1").arg(m_peer));
    m_trouble->setText(faultText(m_server->faults()));
    const auto rate = static_cast<double>(m_records - m_recordsTold) /
                      std::chrono::duration<double>(kStatusInterval).count();
    m_recordsTold = m_records;
    const int curves = m_plot->sources().size();
    m_rate->setText(curves == 0 ? QString() : tr("Curves: %1, records/s: %2").arg(curves).arg(rate));
    m_list->refreshValues();
}

void PlotWindow::askAndSavePicture()
{
    QString path = QFileDialog::getSaveFileName(this, tr("Save picture"), QStringLiteral("curves.png"),
                                                tr("Pictures (*.png *.svg)"));
    if (path.isEmpty())
        return;
    if (!isPicturePath(path))
        path += QStringLiteral(".png");
    if (savePlotPicture(*m_plot, path))
        statusBar()->showMessage(tr("Saved %1").arg(path), 5000);
    else
        QMessageBox::warning(this, tr("Save picture"), tr("%1 cannot be written.").arg(path));
}
