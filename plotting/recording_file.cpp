#include "plotting/recording_file.h"

#include "plotting/RecordReader.h"
#include "plotting/column_names.h"
#include "plotting/plot_value.h"

#include <QIODevice>

#include <cmath>
#include <limits>

namespace {

constexpr qint64 kMaxLineBytes = 64 * 1024;
/// 256 MB: more than an hour of the widest sensor at its full rate.
constexpr qint64 kMaxCells = 32 * 1024 * 1024;
/// Time, counter and the values.
constexpr int kMaxFields = RecordReader::kMaxWidth + 2;

/// The next whole line without its end; nothing for one that is cut or too long.
std::optional<QByteArray> nextLine(QIODevice &device)
{
    QByteArray line = device.readLine(kMaxLineBytes);
    if (!line.endsWith('\n')) {
        for (QByteArray rest = line; !rest.isEmpty() && !rest.endsWith('\n');)
            rest = device.readLine(kMaxLineBytes);
        return std::nullopt;
    }
    line.chop(line.endsWith("\r\n") ? 2 : 1);
    return line;
}

/// Where things stand in the rows of a file.
struct Layout
{
    int fields = 0;
    QVector<int> places; ///< field of each curve
};

std::optional<Layout> layoutFor(int fields, const QStringList &headings, Recording &recording)
{
    Layout layout;
    layout.fields = fields;
    const bool isTable = fields == headings.size() && headings.first() == QLatin1String("time_ms");
    if (!isTable && fields != headings.size() + 1)
        return std::nullopt;
    QStringList names = isTable ? headings : columnNames(headings.mid(1));
    for (int field = isTable ? 1 : 2; field < fields; ++field) {
        if (isTable && headings.at(field) == QLatin1String("counter"))
            continue;
        layout.places.append(field);
        recording.columns.append(names.at(isTable ? field : field - 2));
    }
    if (layout.places.isEmpty())
        return std::nullopt;
    return layout;
}

bool appendRow(const QList<QByteArray> &fields, const Layout &layout, Recording &recording)
{
    bool isNumber = false;
    const RecordingTime time(fields.first().toDouble(&isNumber));
    if (!isNumber || std::isnan(plotValue(time.count())))
        return false;
    if (recording.rows == 0)
        recording.start = time;
    QVector<double> values;
    values.reserve(layout.places.size());
    for (const int place : layout.places) {
        const double value = fields.at(place).toDouble(&isNumber);
        values.append(isNumber ? plotValue(value) : std::numeric_limits<double>::quiet_NaN());
    }
    recording.store->append(std::chrono::duration<double>(time - recording.start).count(), values);
    ++recording.rows;
    return true;
}

} // namespace

Recording readRecording(QIODevice &device)
{
    Recording recording;
    QByteArray head = nextLine(device).value_or(QByteArray());
    if (head.startsWith("\xEF\xBB\xBF"))
        head.remove(0, 3);
    const QStringList headings = QString::fromUtf8(head).split(QLatin1Char(','));
    if (head.isEmpty() || headings.size() > kMaxFields) {
        recording.error = QStringLiteral("has no row of headings");
        return recording;
    }
    std::optional<Layout> layout;
    while (!device.atEnd()) {
        const auto line = nextLine(device);
        const QList<QByteArray> fields = line ? line->split(',') : QList<QByteArray>();
        if (!layout && !fields.isEmpty()) {
            layout = layoutFor(fields.size(), headings, recording);
            if (layout)
                recording.store.emplace(
                    layout->places.size(),
                    SampleStore::Limits{std::numeric_limits<double>::infinity(), kMaxCells});
        }
        if (!layout || fields.size() != layout->fields || !appendRow(fields, *layout, recording))
            ++recording.refused;
    }
    if (recording.rows == 0) {
        recording.store.reset();
        recording.error = recording.refused == 0 ? QStringLiteral("holds no samples")
                                                 : QStringLiteral("is not a recording of sensor samples");
    }
    return recording;
}
