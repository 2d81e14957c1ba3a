// The update tab on the tour: one update over every interface.

#include "demo/Tour.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

#include <cstdio>

namespace {

constexpr int listTimeoutMs = 5000;
constexpr int updateTimeoutMs = 60000;
// On the bench this is the first board or the middle baud rate, and a sensor that is there on every
// interface.
constexpr int interfaceRow = 1;
constexpr int sensorAddress = 0x61;
constexpr int plainImage = 1;

QString radioButtonOf(const QString &interfaceName)
{
    if (interfaceName == QLatin1String("ch341"))
        return QStringLiteral("rbtnIIC");
    if (interfaceName == QLatin1String("ch347"))
        return QStringLiteral("rbtnIICCh347");
    return QStringLiteral("rbtnUart");
}

} // namespace

void Tour::updateOver(const TourStop &stop)
{
    // Other tabs have widgets of the same names.
    const auto *tab = m_window->findChild<QWidget *>(QStringLiteral("wgUpdate"));
    auto *devices = tab->findChild<QComboBox *>(QStringLiteral("cbbUpdateDevList"));
    auto *start = tab->findChild<QPushButton *>(QStringLiteral("pbtnUpdateStart"));
    const auto *result = tab->findChild<QLabel *>(QStringLiteral("lbRes"));
    tab->findChild<QRadioButton *>(radioButtonOf(stop.interfaceName))->click();
    if (!waitUntil(QStringLiteral("device %1 on the update tab").arg(stop.device), listTimeoutMs,
                   [&] { return devices->findText(stop.device) >= 0; }))
        return;
    devices->setCurrentText(stop.device);
    tab->findChild<QComboBox *>(QStringLiteral("cbbInfIdx"))->setCurrentIndex(interfaceRow);
    tab->findChild<QSpinBox *>(QStringLiteral("spbUpdateAddr"))->setValue(sensorAddress);
    tab->findChild<QSpinBox *>(QStringLiteral("spbResetAddr"))->setValue(sensorAddress);
    tab->findChild<QComboBox *>(QStringLiteral("cbbSensorVersion"))->setCurrentIndex(plainImage);
    start->click();
    waitUntil(QStringLiteral("update over %1").arg(stop.interfaceName), updateTimeoutMs,
              [start] { return start->text() == QObject::tr("开始"); });
    picture(m_window, QStringLiteral("update-") + stop.interfaceName);
    std::printf("  update over %s: %s\n", qUtf8Printable(stop.interfaceName), qUtf8Printable(result->text()));
    // The bar keeps the 100 % of the update before until a boot loader has answered.
    if (!result->text().startsWith(QObject::tr("更新成功,用时：")))
        m_failures.append(QStringLiteral("update over %1: %2").arg(stop.interfaceName, result->text()));
}
