#pragma once

#include "sim/SimCh341.h"
#include "sim/SimCh347.h"
#include "sim/SimSerialBus.h"
#include "sim/SimUsb.h"
#include "update/fwUpdateForm.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTemporaryDir>

#include <memory>

/// The ways in which the tab can reach a sensor.
enum class Road { Ch341, Ch347, Uart };
Q_DECLARE_METATYPE(Road)

/// A machine with both bridges and a serial line, the same kind of sensor behind each, at address 0x05. On
/// the bridges it hangs on channel 4 of the multiplexer, which is board 1; the serial boot loader hears at
/// 460800 baud.
struct UpdateBench
{
    static constexpr uint8_t kAddress = 0x05;
    static constexpr int kChannel = 4;

    UpdateBench();

    SimSensor &sensor(Road road) { return road == Road::Uart ? *serialSensor : *bridgeSensor(road); }
    SimBootLoader &loader(Road road) { return sensor(road).bootLoader(); }
    SimBridge &bridge(Road road);
    /// Bytes in hex of every write to the address, one entry a transfer.
    QStringList writes(Road road, uint8_t address);

    const std::shared_ptr<SimI2cBus> ch341Bus = std::make_shared<SimI2cBus>();
    const std::shared_ptr<SimI2cBus> ch347Bus = std::make_shared<SimI2cBus>();
    const std::shared_ptr<SimCh341> ch341 = std::make_shared<SimCh341>(ch341Bus, 5, 2);
    const std::shared_ptr<SimCh347> ch347 = std::make_shared<SimCh347>(ch347Bus, 7001);
    const std::shared_ptr<SimSensor> ch341Sensor;
    const std::shared_ptr<SimSensor> ch347Sensor;
    const std::shared_ptr<SimSensor> serialSensor;
    SimSerialBus line;
    SimUsb usb;

private:
    SimSensor *bridgeSensor(Road road) { return road == Road::Ch341 ? ch341Sensor.get() : ch347Sensor.get(); }
};

/// The tab with its widgets by name, as a user has them before him.
struct UpdateTab
{
    template<typename Widget>
    Widget *child(const char *name)
    {
        return form.findChild<Widget *>(QLatin1String(name));
    }

    /// Enters the tab, chooses the road and waits for its device; board 1 or 460800 baud.
    bool enter(UpdateBench &bench, Road road);
    /// Chooses a file of that content. A user who chooses the first entry has it masked.
    void chooseFile(const QByteArray &content, const QString &name = QStringLiteral("app.bin"),
                    bool masked = false);
    /// Presses the button and waits until the tab is idle again.
    bool runToEnd(int timeoutMs = 60000);
    bool isBusy() const { return start->text() == QStringLiteral("停止"); }

    fwUpdateForm form;
    QRadioButton *ch341 = child<QRadioButton>("rbtnIIC");
    QRadioButton *ch347 = child<QRadioButton>("rbtnIICCh347");
    QRadioButton *uart = child<QRadioButton>("rbtnUart");
    QComboBox *devices = child<QComboBox>("cbbUpdateDevList");
    QComboBox *speed = child<QComboBox>("cbbIICSpeed");
    QComboBox *board = child<QComboBox>("cbbInfIdx");
    QSpinBox *address = child<QSpinBox>("spbUpdateAddr");
    QLineEdit *path = child<QLineEdit>("leUpdateFilePath");
    QComboBox *version = child<QComboBox>("cbbSensorVersion");
    QPushButton *start = child<QPushButton>("pbtnUpdateStart");
    QComboBox *reset = child<QComboBox>("cbbResetCmd");
    QSpinBox *resetAddress = child<QSpinBox>("spbResetAddr");
    QLineEdit *resetText = child<QLineEdit>("leResetCmd");
    QProgressBar *progress = child<QProgressBar>("pbUpdate");
    QLabel *result = child<QLabel>("lbRes");

private:
    QTemporaryDir m_folder;
};

/// size bytes without a pattern that a shifted block could hide in.
QByteArray testImage(int size);
