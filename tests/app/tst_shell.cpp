#include "app/class_settings.h"
#include "app/qmain.h"
#include "monitor/tactViewForm.h"
#include "sim/SimCh341.h"
#include "sim/SimUsb.h"
#include "tests/support/log_capture.h"

#include <QtTest>
#include <QtWidgets>

#include <functional>

// The process is run as the platform runs it, by qMain; what is to be looked at while it lives is hung on the
// application object that qMain makes.

namespace {

std::function<void(QWidget *)> look;

void lookOnceRunning()
{
    QTimer::singleShot(0, qApp, [] {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->inherits("Widget"))
                look(widget);
        }
        QCoreApplication::exit(42);
    });
}

int runTool(const std::function<void(QWidget *)> &whileRunning)
{
    look = whileRunning;
    char name[] = "tst_shell";
    char option[] = "--help"; // which the tool does not have
    char *arguments[] = {name, option, nullptr};
    return qMain(2, arguments);
}

QTabWidget *tabs(QWidget *window)
{
    return window->findChild<QTabWidget *>(QStringLiteral("tabWidget"), Qt::FindDirectChildrenOnly);
}

void turnWheel(QWidget *over)
{
    for (const int angle : {-120, 120, 120}) {
        const QPoint middle = over->rect().center();
        QWheelEvent event(middle, over->mapToGlobal(middle), {}, {0, angle}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        // Only what comes from the user goes on to the widget around, and moves the focus.
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(over, &event);
    }
}

/// Turns the wheel over every box of the window. Names those that change or take the focus.
QStringList boxesThatFollowTheWheel(QWidget *window)
{
    QStringList names;
    window->setFocus();
    for (QWidget *box : window->findChildren<QWidget *>()) {
        const auto *combo = qobject_cast<QComboBox *>(box);
        const auto *spin = qobject_cast<QAbstractSpinBox *>(box);
        if (combo == nullptr && spin == nullptr)
            continue;
        const auto text = [&] { return combo != nullptr ? combo->currentText() : spin->text(); };
        const QString before = text();
        turnWheel(box);
        if (text() != before || box->hasFocus())
            names.append(box->objectName());
    }
    return names;
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(lookOnceRunning)

class tst_shell : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QCoreApplication::setApplicationName(QStringLiteral("tst_shell")); }

    void init()
    {
        QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).removeRecursively();
    }

    void speaksTheLanguageOfTheSettings_data()
    {
        QTest::addColumn<QString>("language");
        for (const char *language : {"", "en", "EN"}) // at the first start, and one that is not known
            QTest::newRow(language) << QString::fromLatin1(language);
    }
    void speaksTheLanguageOfTheSettings()
    {
        QFETCH(QString, language);
        const bool english = language == QLatin1String("en");
        if (!language.isEmpty())
            class_settings::set(QStringLiteral("language"), language, QStringLiteral("config"));
        const LogCapture log;
        QStringList texts;
        int languageIndex = -1;
        const int status = runTool([&](QWidget *window) {
            texts << window->windowTitle();
            for (int i = 0; i < tabs(window)->count(); ++i)
                texts << tabs(window)->tabText(i);
            languageIndex = window->findChild<QComboBox *>(QStringLiteral("cbbLanguage"))->currentIndex();
        });

        QCOMPARE(status, 42);
        QVERIFY(QRegularExpression(QStringLiteral("^tactile-host \\d+\\.\\d+\\.\\d+$"))
                    .match(log.lines().constFirst())
                    .hasMatch());
        QCOMPARE(texts.join(QLatin1Char(' ')),
                 english ? QStringLiteral("Sensor Sensor Update Address Debug")
                         : QStringLiteral("触觉传感器上位机 显示 固件更新 地址设置 调试"));
        QCOMPARE(languageIndex, english ? 1 : 0);
        QCOMPARE(log.count(QStringLiteral("load trans success")), english ? 1 : 0);
        QVERIFY(!log.contains(QStringLiteral("load trans err")));
        QCOMPARE(class_settings::get(QStringLiteral("language"), QString(), QStringLiteral("config")),
                 language.isEmpty() ? QStringLiteral("zh_cn") : language);
    }

    void settingsSurvive()
    {
        QCOMPARE(class_settings::get(QStringLiteral("TCP/IP")), QString());
        QFile stored(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) +
                     QStringLiteral("/setting.ini"));
        QVERIFY(stored.open(QIODevice::ReadOnly));
        QVERIFY(stored.readAll().contains("[TCP]\nIP="));
        for (const char *text : {"C:\\固件\\a, b=c.hex", "/home/x y/图;像.bin", "", "\"quoted\""}) {
            const QString value = QString::fromUtf8(text);
            class_settings::set(QStringLiteral("UPDATE/FILE_PATH"), value);
            QCOMPARE(class_settings::get(QStringLiteral("UPDATE/FILE_PATH"), QStringLiteral("other")), value);
        }
    }

    void settingsThatCannotBeUsedGiveTheDefault()
    {
        const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        QVERIFY(QDir().mkpath(folder));
        QFile rubbish(folder + QStringLiteral("/config.ini"));
        QVERIFY(rubbish.open(QIODevice::WriteOnly));
        for (int i = 0; i < 4096; ++i)
            rubbish.putChar(static_cast<char>((i * 37 + 11) & 0xFF));
        rubbish.close();
        QCOMPARE(class_settings::get(QStringLiteral("language"), QStringLiteral("zh_cn"),
                                     QStringLiteral("config")),
                 QStringLiteral("zh_cn"));

        // A file where the folder should be: nothing can be written, whoever runs the test.
        QVERIFY(QDir(folder).removeRecursively());
        QFile blocker(folder);
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        class_settings::set(QStringLiteral("TCP/PORT"), QStringLiteral("1347"));
        QCOMPARE(class_settings::get(QStringLiteral("TCP/PORT"), QStringLiteral("0")), QStringLiteral("0"));
        QVERIFY(blocker.remove());
    }

    void onlyTheCurrentTabRuns()
    {
        const QStringList stopped{QStringLiteral("tactViewForm stop"), QStringLiteral("fwUpdateForm stop"),
                                  QStringLiteral("setSensorAddrForm stop"),
                                  QStringLiteral("sensorDebugForm stop")};
        const QRegularExpression startOrStop(QStringLiteral("Form (start|stop)$"));
        LogCapture log;
        runTool([&](QWidget *window) {
            for (const int tab : {0, 2, 3, 1, 0}) {
                if (tab != tabs(window)->currentIndex())
                    log.clear();
                tabs(window)->setCurrentIndex(tab);
                QStringList lines = stopped;
                lines[tab].replace(QStringLiteral("stop"), QStringLiteral("start"));
                QCOMPARE(log.lines().filter(startOrStop), lines);
            }
        });
    }

    void wheelOverABoxScrollsWhatIsAroundIt()
    {
        runTool([](QWidget *window) {
            QScrollArea area(window);
            auto *box = new QSpinBox;
            box->setFixedHeight(2000);
            area.setWidget(box);
            area.resize(100, 100);
            area.show();
            area.verticalScrollBar()->setValue(1000);
            turnWheel(box);
            QVERIFY(area.verticalScrollBar()->value() < 1000);
            QCOMPARE(boxesThatFollowTheWheel(window), QStringList());
            QCOMPARE(box->value(), 0);
        });
    }

    void aHeldKeyActsOnce()
    {
        runTool([](QWidget *window) {
            tabs(window)->setCurrentIndex(3);
            auto *command = window->findChild<QLineEdit *>(QStringLiteral("leCh341Write"));
            const auto *log = window->findChild<QPlainTextEdit *>(QStringLiteral("txtDebugLog"));
            QApplication::setActiveWindow(window);
            command->setClearButtonEnabled(false); // its fading would outlive the window
            command->setText(QStringLiteral("11"));
            command->setFocus();
            for (const Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::NoModifier}) {
                const int before = log->document()->blockCount();
                for (const bool repeats : {false, true, true})
                    qt_handleKeyEvent(window->windowHandle(), QEvent::KeyPress, Qt::Key_Return, modifier,
                                      QStringLiteral("\r"), repeats);
                QTest::keyRelease(command, Qt::Key_Return, modifier);
                QCOMPARE(log->document()->blockCount(), before + 1);
            }
        });
    }

    void hotPlugOutlivesVisits()
    {
        SimUsb usb;
        const auto bridge = std::make_shared<SimCh341>(std::make_shared<SimI2cBus>(), 5, 2);
        runTool([&](QWidget *window) {
            const auto *devices = window->findChild<QComboBox *>(QStringLiteral("cbbCh341List"));
            for (const int tab : {1, 3}) {
                tabs(window)->setCurrentIndex(tab);
                tabs(window)->setCurrentIndex(0);
                usb.plug(bridge);
                QTRY_COMPARE(devices->currentText(), QStringLiteral("5002"));
                usb.unplug(bridge);
                QTRY_COMPARE(devices->count(), 0);
            }
            // From one tab with a link to the other, which starts before the first one ends.
            const auto *listed = window->findChild<QComboBox *>(QStringLiteral("cbbUpdateDevList"));
            tabs(window)->setCurrentIndex(3);
            tabs(window)->setCurrentIndex(1);
            window->findChild<QRadioButton *>(QStringLiteral("rbtnIIC"))->click();
            tabs(window)->setCurrentIndex(3);
            tabs(window)->setCurrentIndex(1);
            usb.plug(bridge);
            QTRY_COMPARE(listed->currentText(), QStringLiteral("5002"));
            // That was perhaps the scan after the start; only a notice takes it away again.
            usb.unplug(bridge);
            QTRY_COMPARE(listed->count(), 0);
        });
    }

    void theDemonstrationTellsItsOptions_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("error");
        QTest::newRow("--help") << 0 << "Usage: .*--tour <folder>.*--language <en\\|zh_cn>.*"
                                << "";
        QTest::newRow("--platform none --version") << 0 << "tactile-host-demo \\d[.\\d]+\n"
                                                   << "";
        QTest::newRow("--nonsense") << 2 << ""
                                    << "[^\n]*nonsense[^\n]*\n";
        QTest::newRow("--tour") << 2 << ""
                                << "[^\n]*tour[^\n]*\n";
        QTest::newRow("--language fr") << 2 << ""
                                       << "[^\n]*fr[^\n]*\n";
    }
    void theDemonstrationTellsItsOptions()
    {
        QFETCH(QString, output);
        QFETCH(QString, error);
        QProcess demo;
        demo.start(QStringLiteral(TACTILE_DEMO),
                   QString::fromLatin1(QTest::currentDataTag()).split(QLatin1Char(' ')));
        QVERIFY(demo.waitForFinished());
        QTEST(demo.exitCode(), "status");
        const auto matches = [](const QString &pattern, const QByteArray &text) {
            const QRegularExpression whole(QRegularExpression::anchoredPattern(pattern),
                                           QRegularExpression::DotMatchesEverythingOption);
            return whole.match(QString::fromUtf8(text)).hasMatch();
        };
        QVERIFY(matches(output, demo.readAllStandardOutput()));
        QVERIFY(matches(error, demo.readAllStandardError()));
    }
};

QTEST_APPLESS_MAIN(tst_shell)
#include "tst_shell.moc"
