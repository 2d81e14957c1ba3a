#include "plotting/curve_points.h"
#include "plotting/recording_file.h"
#include "tests/fuzz/fuzz_inputs.h"

#include <QBuffer>

#include <cmath>

void fuzzRecording(const uint8_t *input, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(input), static_cast<int>(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    const Recording recording = readRecording(buffer);

    fuzzCheck(recording.store.has_value() == recording.error.isEmpty(), "samples or a complaint");
    if (!recording.store)
        return;
    const SampleStore &store = *recording.store;
    fuzzCheck(store.width() == recording.columns.size(), "a name for each curve");
    fuzzCheck(recording.rows >= static_cast<quint64>(store.size()) && store.size() > 0, "rows are counted");
    for (int row = 1; row < store.size(); ++row)
        fuzzCheck(store.time(row) >= store.time(row - 1), "time runs forwards");

    constexpr int pixels = 3;
    const CurvePoints curve = curvePoints(store, 0, store.time(0), store.time(store.size() - 1), pixels);
    fuzzCheck(curve.points.size() <= 4 * pixels + 4, "points within limits");
    for (int row = 0; row < store.size(); ++row) {
        const double value = store.value(row, 0);
        fuzzCheck(std::isnan(value) || (value >= curve.low && value <= curve.high), "no peak is lost");
    }
}
