// Cost of one more entry in the log of the debug tab, painting included, when the log is short and when it is
// long. Target: the ten-thousandth entry costs no more than twice the hundredth.

#include "bench/offscreen.h"
#include "tools/debug_entry.h"
#include "tools/sensorDebugForm.h"

#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int kShortLog = 100;
constexpr int kLongLog = 10000;
constexpr int kSamples = 100;
constexpr double kTarget = 2.0;

void append(sensorDebugForm &form)
{
    static const QByteArray frame(62, '\x55');
    Q_EMIT form.si_appendDebugLog(readEntry(0x61, frame));
}

/// Median time of an entry, in microseconds, over the next kSamples entries.
double medianCostUs(sensorDebugForm &form)
{
    std::vector<double> costsUs;
    for (int i = 0; i < kSamples; ++i) {
        QElapsedTimer timer;
        timer.start();
        append(form);
        QCoreApplication::processEvents();
        costsUs.push_back(static_cast<double>(timer.nsecsElapsed()) / 1000.0);
    }
    std::nth_element(costsUs.begin(), costsUs.begin() + kSamples / 2, costsUs.end());
    return costsUs[kSamples / 2];
}

double costBehind(sensorDebugForm &form, int entries)
{
    for (int i = kSamples / 2; i < entries; ++i)
        append(form);
    QCoreApplication::processEvents();
    return medianCostUs(form);
}

} // namespace

int main(int argc, char **argv)
{
    drawOffscreenByDefault();
    const QApplication application(argc, argv);
    sensorDebugForm form;
    form.resize(800, 600);
    form.show();
    const double shortUs = costBehind(form, kShortLog);
    const double longUs = costBehind(form, kLongLog - kShortLog);
    const double ratio = longUs / shortUs;
    std::printf("entry %d: %.0f us, entry %d: %.0f us, ratio %.2f (target %.1f or less)\n", kShortLog,
                shortUs, kLongLog, longUs, ratio, kTarget);
    return ratio <= kTarget ? 0 : 1;
}
