#pragma once

#include "tests/support/LinkBench.h"
#include "tests/support/test_bytes.h"
#include "update/fwUpdateForm.h"

#include <QTemporaryDir>
#include <QtWidgets>

using Kind = LinkBench::Kind;

/// A link with a sensor at the end, on board 1 behind a bridge; its boot loader hears at 460800 baud.
struct UpdateBench : LinkBench
{
    static constexpr uint8_t kAddress = 0x05;

    explicit UpdateBench(Kind link)
        : LinkBench(link)
    {}

    SimBootLoader &loader() const { return sensor->bootLoader(); }

    const Sensor sensor = plugSensor(kAddress, kBoard1);
};

/// The tab with its widgets by name, as a user has them before him.
struct UpdateTab
{
    UpdateTab() = default;
    /// Enters at once.
    explicit UpdateTab(const UpdateBench &bench)
    {
        if (!enter(bench))
            qFatal("%s is not listed", qPrintable(bench.id()));
    }

    /// Enters the tab, chooses the link and waits for its device; board 1 or 460800 baud.
    bool enter(const UpdateBench &bench);
    /// Chooses a file of that content. A user who chooses the first entry has it masked.
    void chooseFile(const QByteArray &content, const QString &name = QStringLiteral("app.bin"),
                    bool masked = false);
    /// Presses the button and waits until the tab is idle again.
    bool runToEnd(int timeoutMs = 60000);
    bool isBusy() const { return start->text() == QStringLiteral("停止"); }

    fwUpdateForm form;
    QRadioButton *ch341 = child<QRadioButton>(form, "rbtnIIC");
    QRadioButton *ch347 = child<QRadioButton>(form, "rbtnIICCh347");
    QRadioButton *uart = child<QRadioButton>(form, "rbtnUart");
    QComboBox *devices = child<QComboBox>(form, "cbbUpdateDevList");
    QComboBox *speed = child<QComboBox>(form, "cbbIICSpeed");
    QComboBox *board = child<QComboBox>(form, "cbbInfIdx");
    QSpinBox *address = child<QSpinBox>(form, "spbUpdateAddr");
    QLineEdit *path = child<QLineEdit>(form, "leUpdateFilePath");
    QComboBox *version = child<QComboBox>(form, "cbbSensorVersion");
    QPushButton *start = child<QPushButton>(form, "pbtnUpdateStart");
    QComboBox *reset = child<QComboBox>(form, "cbbResetCmd");
    QSpinBox *resetAddress = child<QSpinBox>(form, "spbResetAddr");
    QLineEdit *resetText = child<QLineEdit>(form, "leResetCmd");
    QProgressBar *progress = child<QProgressBar>(form, "pbUpdate");
    QLabel *result = child<QLabel>(form, "lbRes");

private:
    QTemporaryDir m_folder;
};
