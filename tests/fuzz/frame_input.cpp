#include "protocol/frames.h"
#include "protocol/sample.h"
#include "tests/fuzz/fuzz_inputs.h"

#include <algorithm>

namespace {

void checkLengths(const uint8_t *bytes, int length)
{
    const int answer = getPackLen(bytes, length);
    fuzzCheck(answer == 0 || (answer <= length && frameSumFits(bytes, answer)), "an answer ends at its sum");
    fuzzCheck(answer == 0 ||
                  std::all_of(bytes + answer, bytes + length, [](uint8_t byte) { return byte == 0; }),
              "and nothing but zeros follows");
    const int sample = getSensorPackLen(bytes, length);
    fuzzCheck(sample == 0 || (sample <= length && frameSumFits(bytes, sample)), "a sample ends at its sum");
}

void checkSample(const QByteArray &frame, const finger_info_ts &row)
{
    const uint8_t block = sampleBlockLength(row.yddsFmt);
    Sample sample;
    sample.counter = 0xEE;
    const SampleRefusal refusal = decodeSample(frame, row, block, sample);
    if (refusal != SampleRefusal::None) {
        fuzzCheck(sample.counter == 0xEE && sample.channels.isEmpty(), "a refused frame changes nothing");
        return;
    }
    fuzzCheck(frame.size() == row.packLen && frameSumFits(frame), "a sample is a whole frame");
    fuzzCheck(sample.channels.size() >= sample.forces.size(), "each force has a channel");
    fuzzCheck(sample.status.size() <= 1, "one status at most");
    for (const SampleNumber &number : qAsConst(sample.channels))
        fuzzCheck(number.text == QString::number(static_cast<int32_t>(number.value)),
                  "a text says its number");
}

} // namespace

void fuzzFrame(const uint8_t *input, std::size_t size)
{
    if (size < 2)
        return;
    const finger_info_ts &row = finger_infos[input[0] % kFingerInfoCount];
    const int length = static_cast<int>(size) - 2;
    checkLengths(input + 2, length);
    QByteArray frame(reinterpret_cast<const char *>(input) + 2, length);
    checkSample(frame, row);
    // No input has the right length and sum by chance.
    frame.resize(row.packLen);
    std::fill(frame.begin() + std::min<int>(length, frame.size()), frame.end(), static_cast<char>(input[1]));
    frame.replace(0, 2, "\x55\xAA");
    sealFrame(frame);
    checkSample(frame, row);
    checkLengths(frameBytes(frame), frame.size());
}
