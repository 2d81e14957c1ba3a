#include "demo/WindowDriver.h"
#include "demo/visits.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

using namespace std::chrono_literals;

namespace {

constexpr auto kListTimeout = 5s;
constexpr auto kUpdateTimeout = 60s;
// On the bench this is the first board or the middle baud rate, and a sensor that is there on every
// interface.
constexpr int kInterfaceRow = 1;
constexpr int kSensorAddress = 0x61;
constexpr int kPlainImage = 1;

QString radioButtonOf(const QString &interfaceName)
{
    if (interfaceName == QLatin1String("ch341"))
        return QStringLiteral("rbtnIIC");
    if (interfaceName == QLatin1String("ch347"))
        return QStringLiteral("rbtnIICCh347");
    return QStringLiteral("rbtnUart");
}

} // namespace

void updateOver(WindowDriver &driver, const TourStop &stop)
{
    // Other tabs have widgets of the same names.
    const auto *tab = driver.child<QWidget>("wgUpdate");
    auto *devices = tab->findChild<QComboBox *>(QStringLiteral("cbbUpdateDevList"));
    auto *start = tab->findChild<QPushButton *>(QStringLiteral("pbtnUpdateStart"));
    const auto *result = tab->findChild<QLabel *>(QStringLiteral("lbRes"));
    tab->findChild<QRadioButton *>(radioButtonOf(stop.interfaceName))->click();
    if (!driver.waitUntil(QStringLiteral("device %1 on the update tab").arg(stop.device), kListTimeout,
                          [&] { return devices->findText(stop.device) >= 0; }))
        return;
    devices->setCurrentText(stop.device);
    tab->findChild<QComboBox *>(QStringLiteral("cbbInfIdx"))->setCurrentIndex(kInterfaceRow);
    tab->findChild<QSpinBox *>(QStringLiteral("spbUpdateAddr"))->setValue(kSensorAddress);
    tab->findChild<QSpinBox *>(QStringLiteral("spbResetAddr"))->setValue(kSensorAddress);
    tab->findChild<QComboBox *>(QStringLiteral("cbbSensorVersion"))->setCurrentIndex(kPlainImage);
    start->click();
    driver.waitUntil(QStringLiteral("update over %1").arg(stop.interfaceName), kUpdateTimeout,
                     [start] { return start->text() == QObject::tr("开始"); });
    driver.picture(QStringLiteral("update-") + stop.interfaceName);
    print(QStringLiteral("  update over %1: %2").arg(stop.interfaceName, result->text()));
    // The bar keeps the 100 % of the update before until a boot loader has answered.
    if (!result->text().startsWith(QObject::tr("更新成功,用时：")))
        driver.fail(QStringLiteral("update over %1: %2").arg(stop.interfaceName, result->text()));
}
