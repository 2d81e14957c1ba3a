#include "demo/WindowDriver.h"
#include "demo/visits.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

using namespace std::chrono_literals;

namespace {

constexpr auto kListTimeout = 5s;
constexpr auto kAnswerTimeout = 5s;
constexpr int kCh341Row = 1;
// The sensor that the bench has on the first board, and an address that is free there.
constexpr int kOldAddress = 0x61;
constexpr int kNewAddress = 0x6E;
constexpr int kChannelCount = 8;
constexpr int kAnswerLength = 11;

template<typename Child>
Child *in(const QWidget *tab, const QString &name)
{
    return tab->findChild<Child *>(name);
}

bool channelAnswers(const QWidget *tab, int channel)
{
    for (int i = 0; i < kChannelCount; ++i)
        in<QCheckBox>(tab, QStringLiteral("chkbCh%1").arg(i))->setChecked(i == channel);
    in<QPushButton>(tab, QStringLiteral("pbtnSetPCA9548"))->click();
    auto *log = in<QPlainTextEdit>(tab, QStringLiteral("txtDebugLog"));
    const int before = log->toPlainText().size();
    in<QPushButton>(tab, QStringLiteral("pbtnCh341WR"))->click();
    return log->toPlainText().midRef(before).contains(QStringLiteral("读:校验成功"));
}

void moveSensor(WindowDriver &driver, const TourStop &stop, int fromAddress, int toAddress)
{
    const auto *tab = driver.child<QWidget>("wgSetAddr");
    auto *devices = in<QComboBox>(tab, QStringLiteral("cbbInfList"));
    auto *connection = in<QPushButton>(tab, QStringLiteral("pbtnInfConnect"));
    const auto *current = in<QSpinBox>(tab, QStringLiteral("spbCurrAddrDec"));
    driver.showTab(tab);
    auto *interfaces = in<QComboBox>(tab, QStringLiteral("cbbInf"));
    interfaces->setCurrentIndex(0);
    interfaces->setCurrentIndex(kCh341Row);
    if (!driver.waitUntil(QStringLiteral("device %1 on the address tab").arg(stop.device), kListTimeout,
                          [&] { return devices->findText(stop.device) >= 0; }))
        return;
    devices->setCurrentText(stop.device);
    connection->click();
    driver.waitUntil(QStringLiteral("address 0x%1 read").arg(fromAddress, 0, 16), kAnswerTimeout,
                     [&] { return current->value() == fromAddress; });
    in<QSpinBox>(tab, QStringLiteral("spbTarAddrHex"))->setValue(toAddress);
    in<QPushButton>(tab, QStringLiteral("pbtnSet"))->click();
    driver.waitUntil(QStringLiteral("address 0x%1 set").arg(toAddress, 0, 16), kAnswerTimeout,
                     [&] { return current->value() == toAddress; });
    driver.picture(QStringLiteral("address-0x%1").arg(toAddress, 0, 16));
    print(QStringLiteral("  sensor at 0x%1 is now at 0x%2")
              .arg(fromAddress, 0, 16)
              .arg(current->value(), 0, 16));
    connection->click();
}

} // namespace

void moveSensorAndBack(WindowDriver &driver, const TourStop &stop)
{
    moveSensor(driver, stop, kOldAddress, kNewAddress);
    driver.showTab(driver.child<QWidget>("wgTactView"));
    if (driver.connectLink(stop)) {
        const QString panel = QStringLiteral("0x%1").arg(kNewAddress, 0, 16);
        driver.waitUntil(QStringLiteral("the moved sensor in the tree"), kAnswerTimeout,
                         [&] { return driver.treeShows(panel); });
        driver.picture(QStringLiteral("moved-sensor"));
        driver.disconnectLink();
    }
    moveSensor(driver, stop, kNewAddress, kOldAddress);
}

void scanMultiplexer(WindowDriver &driver, const TourStop &stop)
{
    const auto *tab = driver.child<QWidget>("wgDebug");
    auto *devices = in<QComboBox>(tab, QStringLiteral("cbbDevInf"));
    auto *connection = in<QPushButton>(tab, QStringLiteral("pbtnInfConnect"));
    driver.showTab(tab);
    in<QRadioButton>(tab, QStringLiteral("rbtnIIC"))->click();
    devices->clear(); // what is in it may be from the last visit
    if (!driver.waitUntil(QStringLiteral("device %1 on the debug tab").arg(stop.device), kListTimeout,
                          [&] { return devices->findText(stop.device) >= 0; }))
        return;
    devices->setCurrentText(stop.device);
    connection->click();
    // Asks whoever is on the channel for its address; the sum is the tab's business.
    in<QSpinBox>(tab, QStringLiteral("spbCh341Addr"))->setValue(0);
    in<QLineEdit>(tab, QStringLiteral("leCh341Write"))->setText(QStringLiteral("aa5500710000000000"));
    in<QCheckBox>(tab, QStringLiteral("chkbtnChk"))->setChecked(true);
    in<QSpinBox>(tab, QStringLiteral("spbCh341Read"))->setValue(kAnswerLength);
    int answers = 0;
    for (int channel = 0; channel < kChannelCount; ++channel)
        answers += channelAnswers(tab, channel) ? 1 : 0;
    driver.picture(QStringLiteral("multiplexer"));
    print(QStringLiteral("  %1 of %2 channels answer").arg(answers).arg(kChannelCount));
    if (answers != stop.sensorCount)
        driver.fail(QStringLiteral("%1 channels answer").arg(answers));
    connection->click();
}
