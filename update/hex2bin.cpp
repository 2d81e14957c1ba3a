#include "update/hex2bin.h"

#include <QDebug>

#include <algorithm>
#include <optional>
#include <vector>

namespace {

constexpr int kLengthPos = 1;
constexpr int kOffsetPos = 3;
constexpr int kTypePos = 7;
constexpr int kDataPos = 9;

enum RecordType : unsigned { Data, EndOfFile, SegmentAddress, StartSegmentAddress, LinearAddress };

/// A line of the file, not copied.
struct Line
{
    const char *text;
    int size;
};

struct Record
{
    unsigned offset;
    unsigned type;
    const char *digits; ///< of the data, two a byte
    int length;         ///< of the data in bytes
};

/// Where in the image the data of an address went.
struct Placed
{
    unsigned address;
    int position;
    int length;
};

int digitValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    return -1;
}

std::optional<unsigned> hexNumber(const char *digits, int count)
{
    unsigned number = 0;
    for (int i = 0; i < count; ++i) {
        const int value = digitValue(digits[i]);
        if (value < 0)
            return std::nullopt;
        number = number << 4U | static_cast<unsigned>(value);
    }
    return number;
}

std::optional<unsigned> hexField(const Line &line, int position, int count)
{
    if (line.size < position + count)
        return std::nullopt;
    return hexNumber(line.text + position, count);
}

/// Sum of count bytes from the length field on; nothing when a digit cannot be read.
std::optional<unsigned> byteSum(const Line &line, int count)
{
    unsigned sum = 0;
    for (int i = 0; i < count; ++i) {
        const std::optional<unsigned> byte = hexField(line, kLengthPos + 2 * i, 2);
        if (!byte)
            return std::nullopt;
        sum += *byte;
    }
    return sum;
}

void logChecksumError(const Line &line)
{
    qWarning("Checksum error at line:%s", QByteArray(line.text, line.size).constData());
}

/// The record of a line that begins with ':'; nothing when it cannot be taken.
std::optional<Record> readRecord(const Line &line)
{
    const std::optional<unsigned> length = hexField(line, kLengthPos, 2);
    const std::optional<unsigned> offset = hexField(line, kOffsetPos, 4);
    const std::optional<unsigned> type = hexField(line, kTypePos, 2);
    if (!length || !offset || !type)
        return std::nullopt;
    const int dataLength = static_cast<int>(*length);
    const std::optional<unsigned> check = hexField(line, kDataPos + 2 * dataLength, 2);
    const std::optional<unsigned> sum = byteSum(line, dataLength + 4);
    if (!check || !sum)
        return std::nullopt;
    if ((*check + *sum) % 256 != 0) {
        logChecksumError(line);
        return std::nullopt;
    }
    if (*type > LinearAddress) {
        qWarning("Unsupported record type:%u", *type);
        return std::nullopt;
    }
    return Record{*offset, *type, line.text + kDataPos, dataLength};
}

void logByAddress(std::vector<Placed> &placed, const QByteArray &image)
{
    std::stable_sort(placed.begin(), placed.end(),
                     [](const Placed &a, const Placed &b) { return a.address < b.address; });
    QDebug log = qDebug().nospace();
    log << "QMap(";
    for (std::size_t i = 0; i < placed.size(); ++i) {
        const bool replaced = i + 1 < placed.size() && placed[i + 1].address == placed[i].address;
        if (!replaced) {
            const char *data = image.constData() + placed[i].position;
            log << '(' << placed[i].address << ", " << QByteArray::fromRawData(data, placed[i].length) << ')';
        }
    }
    log << ')';
}

class Parser
{
public:
    /// True while the lines go on; false at the end record or when a record cannot be taken.
    bool takeLine(const Line &line)
    {
        if (line.size == 0 || line.text[0] != ':')
            return true;
        const std::optional<Record> record = readRecord(line);
        if (!record) {
            m_image.clear();
            return false;
        }
        if (record->type == EndOfFile)
            return false;
        if (record->type == Data)
            appendData(*record);
        else
            moveBase(*record);
        return true;
    }

    QByteArray image() const { return m_image; }
    void logRecords() { logByAddress(m_placed, m_image); }

private:
    void appendData(const Record &record)
    {
        m_placed.push_back({m_base * 16 + record.offset, m_image.size(), record.length});
        for (int i = 0; i < record.length; ++i)
            m_image.append(static_cast<char>(*hexNumber(record.digits + 2 * i, 2)));
    }

    void moveBase(const Record &record)
    {
        m_base = *hexNumber(record.digits, 2 * std::min(record.length, 2));
        if (record.type == LinearAddress)
            m_base <<= 16U;
    }

    unsigned m_base = 0;
    QByteArray m_image;
    std::vector<Placed> m_placed;
};

} // namespace

QByteArray hex2bin::hexToBin(const QByteArray &text)
{
    const char *const end = std::find(text.constBegin(), text.constEnd(), '\0');
    Parser parser;
    const char *lineStart = text.constBegin();
    for (;;) {
        const char *const lineEnd = std::find(lineStart, end, '\n');
        if (!parser.takeLine({lineStart, static_cast<int>(lineEnd - lineStart)}))
            return parser.image();
        if (lineEnd == end)
            break;
        lineStart = lineEnd + 1;
    }
    parser.logRecords();
    return parser.image();
}
