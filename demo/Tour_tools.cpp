// The address and debug tabs on the tour: a sensor moves to another address and back, a multiplexer is
// scanned by hand.

#include "demo/Tour.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

#include <cstdio>

namespace {

constexpr int listTimeoutMs = 5000;
constexpr int answerTimeoutMs = 5000;
constexpr int ch341Row = 1;
// The sensor that the bench has on the first board, and an address that is free there.
constexpr int oldAddress = 0x61;
constexpr int newAddress = 0x6E;
constexpr int channelCount = 8;
constexpr int answerLength = 11;

template<typename Child>
Child *in(const QWidget *tab, const QString &name)
{
    return tab->findChild<Child *>(name);
}

} // namespace

void Tour::moveSensor(const TourStop &stop, int fromAddress, int toAddress)
{
    const auto *tab = m_window->findChild<QWidget *>(QStringLiteral("wgSetAddr"));
    auto *devices = in<QComboBox>(tab, QStringLiteral("cbbInfList"));
    auto *connection = in<QPushButton>(tab, QStringLiteral("pbtnInfConnect"));
    const auto *current = in<QSpinBox>(tab, QStringLiteral("spbCurrAddrDec"));
    showTab(tab);
    auto *interfaces = in<QComboBox>(tab, QStringLiteral("cbbInf"));
    interfaces->setCurrentIndex(0);
    interfaces->setCurrentIndex(ch341Row);
    if (!waitUntil(QStringLiteral("device %1 on the address tab").arg(stop.device), listTimeoutMs,
                   [&] { return devices->findText(stop.device) >= 0; }))
        return;
    devices->setCurrentText(stop.device);
    connection->click();
    waitUntil(QStringLiteral("address 0x%1 read").arg(fromAddress, 0, 16), answerTimeoutMs,
              [&] { return current->value() == fromAddress; });
    in<QSpinBox>(tab, QStringLiteral("spbTarAddrHex"))->setValue(toAddress);
    in<QPushButton>(tab, QStringLiteral("pbtnSet"))->click();
    waitUntil(QStringLiteral("address 0x%1 set").arg(toAddress, 0, 16), answerTimeoutMs,
              [&] { return current->value() == toAddress; });
    picture(m_window, QStringLiteral("address-0x%1").arg(toAddress, 0, 16));
    std::printf("  sensor at 0x%x is now at 0x%x\n", static_cast<unsigned>(fromAddress),
                static_cast<unsigned>(current->value()));
    connection->click();
}

void Tour::moveSensorAndBack(const TourStop &stop)
{
    moveSensor(stop, oldAddress, newAddress);
    showTab(m_window->findChild<QWidget *>(QStringLiteral("wgTactView")));
    if (connectLink(stop)) {
        const QString panel = QStringLiteral("0x%1").arg(newAddress, 0, 16);
        waitUntil(QStringLiteral("the moved sensor in the tree"), answerTimeoutMs,
                  [&] { return treeShows(panel); });
        picture(m_window, QStringLiteral("moved-sensor"));
        disconnectLink();
    }
    moveSensor(stop, newAddress, oldAddress);
}

void Tour::scanMultiplexer(const TourStop &stop)
{
    const auto *tab = m_window->findChild<QWidget *>(QStringLiteral("wgDebug"));
    auto *devices = in<QComboBox>(tab, QStringLiteral("cbbDevInf"));
    auto *connection = in<QPushButton>(tab, QStringLiteral("pbtnInfConnect"));
    showTab(tab);
    in<QRadioButton>(tab, QStringLiteral("rbtnIIC"))->click();
    devices->clear(); // what is in it may be from the last visit
    if (!waitUntil(QStringLiteral("device %1 on the debug tab").arg(stop.device), listTimeoutMs,
                   [&] { return devices->findText(stop.device) >= 0; }))
        return;
    devices->setCurrentText(stop.device);
    connection->click();
    // Asks whoever is on the channel for its address; the sum is the tab's business.
    in<QSpinBox>(tab, QStringLiteral("spbCh341Addr"))->setValue(0);
    in<QLineEdit>(tab, QStringLiteral("leCh341Write"))->setText(QStringLiteral("aa5500710000000000"));
    in<QCheckBox>(tab, QStringLiteral("chkbtnChk"))->setChecked(true);
    in<QSpinBox>(tab, QStringLiteral("spbCh341Read"))->setValue(answerLength);
    int answers = 0;
    for (int channel = 0; channel < channelCount; ++channel)
        answers += channelAnswers(tab, channel) ? 1 : 0;
    picture(m_window, QStringLiteral("multiplexer"));
    std::printf("  %d of %d channels answer\n", answers, channelCount);
    if (answers != stop.sensorCount)
        m_failures.append(QStringLiteral("%1 channels answer").arg(answers));
    connection->click();
}

bool Tour::channelAnswers(const QWidget *tab, int channel)
{
    for (int i = 0; i < channelCount; ++i)
        in<QCheckBox>(tab, QStringLiteral("chkbCh%1").arg(i))->setChecked(i == channel);
    in<QPushButton>(tab, QStringLiteral("pbtnSetPCA9548"))->click();
    auto *log = in<QPlainTextEdit>(tab, QStringLiteral("txtDebugLog"));
    const int before = log->toPlainText().size();
    in<QPushButton>(tab, QStringLiteral("pbtnCh341WR"))->click();
    return log->toPlainText().mid(before).contains(QStringLiteral("读:校验成功"));
}
