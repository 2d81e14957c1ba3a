#include "demo/WindowDriver.h"
#include "demo/visits.h"

#include <QCoreApplication>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QStandardPaths>

using namespace std::chrono_literals;

namespace {

constexpr auto kStartTimeout = 20s;
constexpr auto kConnectTimeout = 5s;
constexpr auto kEndTimeout = 20s;
constexpr auto kCurvesTime = 8s;

/// Port on which the plotter says that it listens, 0 as long as it has not.
int listeningPort(const QByteArray &said)
{
    static const QRegularExpression pattern(QStringLiteral("port (\\d+)\\n"));
    return pattern.match(QString::fromUtf8(said)).captured(1).toInt();
}

} // namespace

void plotLive(WindowDriver &driver)
{
    const QString program = QStandardPaths::findExecutable(QStringLiteral("tactile-plot"),
                                                           {QCoreApplication::applicationDirPath()});
    if (program.isEmpty())
        return;
    const QString file = driver.nextPicture(QStringLiteral("plotter"));
    QProcess plotter;
    plotter.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    plotter.start(program,
                  {QStringLiteral("--listen"), QStringLiteral("0"), QStringLiteral("--picture"), file});
    QByteArray said;
    if (!driver.waitUntil(QStringLiteral("the plotter listening"), kStartTimeout, [&] {
            said += plotter.readAllStandardOutput();
            return listeningPort(said) != 0;
        }))
        return;
    driver.child<QLineEdit>("leServiceAddr")->setText(QStringLiteral("127.0.0.1"));
    driver.child<QSpinBox>("spbServicePort")->setValue(listeningPort(said));
    auto *connection = driver.child<QPushButton>("pbtnServiceConnect");
    connection->click();
    driver.waitUntil(QStringLiteral("connected to the plotter"), kConnectTimeout,
                     [&] { return connection->text() == QObject::tr("断开"); });
    WindowDriver::letRun(kCurvesTime);
    plotter.terminate();
    driver.waitUntil(QStringLiteral("end of the plotter"), kEndTimeout,
                     [&] { return plotter.state() == QProcess::NotRunning; });
    driver.waitUntil(QStringLiteral("the plotter's peer told"), kConnectTimeout,
                     [&] { return connection->text() == QObject::tr("连接"); });
    if (!QFile::exists(file))
        driver.fail(QStringLiteral("the plotter drew no picture"));
    print(QStringLiteral("  drawn live by tactile-plot"));
}
