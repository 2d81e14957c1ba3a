// Cost of what is done to bytes: samples decoded, lengths found, records made, firmware read. Each against
// the least that any program would do for the same result.

#include "bench/compare.h"
#include "monitor/tcp_record.h"
#include "protocol/frames.h"
#include "protocol/sample.h"
#include "update/hex2bin.h"
#include "views/class_finger.h"

#include <cstring>

namespace {

constexpr uint8_t kPrg = 0x02;
constexpr int kTimes = 2000;
constexpr int kHexTimes = 5;
constexpr int kHexRecords = 16384; // of 16 bytes: 256 KiB

struct Decoder : class_finger
{
    Decoder()
        : class_finger(kPrg, nullptr)
    {}
};

/// A sample frame with a value in every channel.
QByteArray frame(int length)
{
    QByteArray bytes(length, '\0');
    for (int i = 6; i < length; ++i)
        bytes[i] = static_cast<char>(i * 37 + 1);
    bytes.replace(0, 4, QByteArray::fromHex("55aa0085"));
    bytes[5] = '\0';
    sealFrame(bytes);
    return bytes;
}

/// The texts of a sample, made from numbers in a row of their own.
int formatNumbers(const Sample &sample, QVector<QString> &texts)
{
    texts.clear();
    for (const SampleNumber &number : sample.channels)
        texts += QString::number(static_cast<int>(number.value));
    for (const SampleBlock &block : sample.blocks) {
        texts += QString::number(static_cast<double>(block.normal), 'f', 2);
        texts += QString::number(static_cast<double>(block.tangential), 'f', 2);
        texts += QString::number(block.direction);
    }
    for (const SampleNumber &number : sample.selfProximity)
        texts += QString::number(number.value);
    return texts.size();
}

void benchDecoder(const QByteArray &bytes, const finger_info_ts &row)
{
    Sample sample;
    QVector<QString> texts;
    const uint8_t block = sampleBlockLength(row.yddsFmt);
    compare(
        "decoder, against writing the same numbers", kTimes,
        [&](int) { decodeSample(bytes, row, block, sample); }, [&](int) { formatNumbers(sample, texts); });
}

void benchLengths(const QByteArray &bytes)
{
    const QByteArray two = bytes + bytes;
    const QByteArray padded = bytes + QByteArray(500 - bytes.size(), '\0');
    int found = 0;
    const auto sumUp = [&found](const QByteArray &all) { found += frameSum(all); };
    compare(
        "length of a sample, against one sum", kTimes,
        [&](int) { found += getSensorPackLen(frameBytes(two), two.size()); }, [&](int) { sumUp(two); });
    compare(
        "length of an answer, against one sum", kTimes,
        [&](int) { found += getPackLen(frameBytes(padded), padded.size()); }, [&](int) { sumUp(padded); });
    if (found == 0)
        std::printf("nothing found\n");
}

void benchRecords(const QByteArray &bytes)
{
    Decoder decoder;
    decoder.parseData(bytes);
    QStringList texts;
    for (const QString &text : qAsConst(decoder.dataList))
        texts += text;
    QByteArray record;
    const auto join = [&](int) { record = texts.join(QLatin1Char(',')).toLatin1(); };
    compare(
        "record as text, against joining", kTimes,
        [&](int) { record = tcpRecord(TcpFormat::FireWater, decoder); }, join);
    compare(
        "record as floats, against joining", kTimes,
        [&](int) { record = tcpRecord(TcpFormat::JustFloat, decoder); }, join);
}

void benchHex()
{
    QByteArray text;
    QByteArray digits;
    for (int i = 0; i < kHexRecords; ++i) {
        QByteArray record = QByteArray::fromHex("10");
        record += static_cast<char>(i * 16 >> 8);
        record += static_cast<char>(i * 16);
        record += '\0';
        record += QByteArray(16, static_cast<char>(i));
        uint8_t sum = 0;
        for (const char byte : qAsConst(record))
            sum = static_cast<uint8_t>(sum + static_cast<uint8_t>(byte));
        record += static_cast<char>(-sum);
        digits += record.toHex();
        text += ':' + record.toHex() + "\r\n";
    }
    text += ":00000001FF\r\n";
    QByteArray image;
    compare(
        "firmware of 256 KiB, against reading its digits", kHexTimes,
        [&](int) { image = hex2bin::hexToBin(text); }, [&](int) { image = QByteArray::fromHex(digits); });
}

} // namespace

int main()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    const finger_info_ts &row = *findFingerInfoByPrg(kPrg);
    const QByteArray bytes = frame(row.packLen);
    benchDecoder(bytes, row);
    benchLengths(bytes);
    benchRecords(bytes);
    benchHex();
    return 0;
}
