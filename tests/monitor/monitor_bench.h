#pragma once

#include "monitor/tactViewForm.h"
#include "panel/fingerForm.h"
#include "sim/SimSerialBus.h"
#include "views/class_finger.h"

#include <QtTest>
#include <QtWidgets>

/// A monitor window on a simulated serial line.
class MonitorBench
{
public:
    static constexpr int kPatienceMs = 120000;

    MonitorBench()
    {
        form.resize(800, 560);
        form.show();
        get<QComboBox>("cbbSensorInf")->setCurrentIndex(0);
        form.stop(); // Takes back the restart that the change has announced.
    }

    std::shared_ptr<SimSensor> plug(uint8_t prg, uint8_t addr)
    {
        auto sensor = std::make_shared<SimSensor>(prg, addr);
        line.plug(sensor);
        return sensor;
    }
    /// Chooses the port of the line as soon as it is listed, connects, and waits until the link is up.
    bool connectLine()
    {
        auto *ports = get<QComboBox>("cbbCh341List");
        if (!QTest::qWaitFor([&] { return ports->findText(line.portName()) >= 0; }, kPatienceMs))
            return false;
        ports->setCurrentText(line.portName());
        button()->click();
        return QTest::qWaitFor([this] { return connected(); }, kPatienceMs);
    }
    QPushButton *button() const { return get<QPushButton>("pbtnCh341Connect"); }
    bool connected() const { return button()->text() == QObject::tr("断开"); }

    /// Texts of all sensors in the tree, with their serial numbers cut off.
    QStringList tree() const
    {
        QStringList texts;
        const auto *widget = form.findChild<QTreeWidget *>();
        for (int i = 0; i < widget->topLevelItemCount(); ++i)
            for (int k = 0; k < widget->topLevelItem(i)->childCount(); ++k)
                texts += widget->topLevelItem(i)->child(k)->text(0).section(QLatin1Char('/'), 0, 1);
        texts.sort();
        return texts;
    }
    QStringList panels() const
    {
        QStringList names;
        for (const QMdiSubWindow *window : mdi()->subWindowList())
            names += window->objectName();
        names.sort();
        return names;
    }
    bool waitForSensors(const QStringList &names)
    {
        return QTest::qWaitFor([&] { return tree() == names; }, kPatienceMs);
    }
    /// Starts the worker and waits until these sensors are found.
    bool find(const QStringList &names)
    {
        form.start();
        return connectLine() && waitForSensors(names);
    }
    void connectPlotter(int port) const
    {
        get<QLineEdit>("leServiceAddr")->setText(QStringLiteral("127.0.0.1"));
        get<QSpinBox>("spbServicePort")->setValue(port);
        get<QPushButton>("pbtnServiceConnect")->click();
    }
    fingerForm *panel(const char *name) const { return form.findChild<fingerForm *>(QLatin1String(name)); }
    QMdiArea *mdi() const { return form.findChild<QMdiArea *>(); }

    template<typename Widget>
    Widget *get(const char *name) const
    {
        auto *widget = form.findChild<Widget *>(QLatin1String(name));
        Q_ASSERT(widget);
        return widget;
    }

    SimSerialBus line;
    tactViewForm form;
};
