#include "plotting/StreamReader.h"
#include "tests/fuzz/fuzz_inputs.h"

#include <cmath>
#include <limits>

namespace {

/// What came out of a stream.
struct Outcome
{
    QVector<QVector<double>> records;
    StreamFaults faults;
};

Outcome read(StreamFormat format, const QByteArray &bytes, int piece)
{
    Outcome outcome;
    StreamReader reader(format,
                        [&outcome](const QVector<double> &values) { outcome.records.append(values); });
    for (int at = 0; at < bytes.size(); at += piece)
        reader.feed(bytes.mid(at, piece));
    reader.finish();
    outcome.faults = reader.faults();
    return outcome;
}

bool isDrawable(double value)
{
    return std::isnan(value) || std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max());
}

bool isEqual(const QVector<double> &one, const QVector<double> &other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); });
}

} // namespace

void fuzzStream(const uint8_t *input, std::size_t size)
{
    if (size == 0)
        return;
    const auto format = static_cast<StreamFormat>(input[0] % 3);
    const QByteArray bytes(reinterpret_cast<const char *>(input) + 1, static_cast<int>(size) - 1);
    const Outcome whole = read(format, bytes, bytes.size() + 1);
    const Outcome pieces = read(format, bytes, 1 + input[0] / 3);

    fuzzCheck(std::equal(whole.records.begin(), whole.records.end(), pieces.records.begin(),
                         pieces.records.end(), isEqual),
              "pieces make no difference");
    fuzzCheck(whole.faults.refused() == pieces.faults.refused() && whole.faults.gaps == pieces.faults.gaps,
              "nor to what is refused");
    const auto counted = static_cast<quint64>(whole.records.size()) + whole.faults.refused();
    fuzzCheck(counted <= static_cast<quint64>(bytes.size()), "a byte for each record at least");
    quint64 gaps = 0;
    for (const QVector<double> &record : whole.records) {
        fuzzCheck(!record.isEmpty() && record.size() <= RecordReader::kMaxWidth, "width within limits");
        fuzzCheck(std::all_of(record.begin(), record.end(), isDrawable), "every value can be drawn");
        for (const double value : record)
            gaps += std::isnan(value) ? 1U : 0U;
    }
    fuzzCheck(gaps == whole.faults.gaps, "gaps are counted");
}
