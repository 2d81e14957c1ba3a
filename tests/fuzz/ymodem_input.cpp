// A size, then a byte for each poll: the low bits choose an answer, the high ones an act of the owner.

#include "tests/fuzz/fuzz_inputs.h"
#include "tests/support/test_bytes.h"
#include "tests/update/VirtualTime.h"
#include "update/class_ymodem.h"
#include "update/ymodem_frames.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace {

constexpr int kLargestImage = 8192;

QByteArray testImage(int size)
{
    static const QByteArray largest = testBytes(kLargestImage);
    return largest.left(size);
}

/// Plays owner and receiver.
class Script
{
public:
    Script(const uint8_t *input, std::size_t size, const QByteArray &image)
        : m_next(input)
        , m_end(input + size)
        , m_image(image)
        , m_sender(QStringLiteral("firmware.bin"), image)
    {
        QObject::connect(&m_sender, &class_ymodem::si_read, &m_sender, [this](uint16_t len) {
            fuzzCheck(len == 1, "polls one byte");
            answerPoll();
        });
        QObject::connect(&m_sender, &class_ymodem::si_write, &m_sender, [this](const QByteArray &pack) {
            checkFrame(pack);
            if (!m_losesCompletion)
                m_sender.sl_writeSuccess();
        });
        QObject::connect(&m_sender, &class_ymodem::si_setProgress, &m_sender,
                         [this](uint8_t percent) { m_percent = percent; });
        QObject::connect(&m_sender, &class_ymodem::si_updateSuccess, &m_sender,
                         [this] { fuzzCheck(m_percent == 100, "success at 100 percent"); });
    }

    void run(VirtualTime &time)
    {
        const auto end = [this] { m_ended = true; };
        QObject::connect(&m_sender, &class_ymodem::si_updateSuccess, &m_sender, end);
        QObject::connect(&m_sender, &class_ymodem::si_updateTimeout, &m_sender, end);
        QObject::connect(&m_sender, &class_ymodem::si_updateCancel, &m_sender, end);
        m_sender.update_start();
        while (m_next != m_end && !m_ended && time.step())
            fuzzCheck(m_percent <= 100, "at most 100 percent");
    }

private:
    void answerPoll()
    {
        if (m_next == m_end)
            return;
        const unsigned choice = *m_next++;
        m_losesCompletion = choice >> 4U == 0xF;
        if (choice >> 4U == 0xE)
            m_sender.update_cancel();
        m_sender.sl_received1(answer(choice & 0xFU));
    }

    QByteArray answer(unsigned choice)
    {
        static const QByteArray cancels(6, 0x18);
        static const std::array<QByteArray, 11> answers{"\x06",          "C",
                                                        "\x15",          QByteArray(1, '\0'),
                                                        QByteArray(),    cancels.left(5),
                                                        cancels.left(4), "\x06\x06",
                                                        "C\x06",         "\xFF",
                                                        cancels};
        if (choice < answers.size())
            return answers.at(choice);
        const auto length = std::min<std::ptrdiff_t>(choice - 9, m_end - m_next);
        QByteArray raw(reinterpret_cast<const char *>(m_next), static_cast<int>(length));
        m_next += length;
        return raw;
    }

    void checkFrame(const QByteArray &pack) const
    {
        if (pack.isEmpty() || pack == QByteArray::fromHex("04000000") || pack == QByteArray(8, 0x18))
            return;
        const auto sequence = static_cast<uint8_t>(pack.at(1));
        if (sequence == 0)
            return;
        const bool isLarge = pack.size() == YmodemFrames::largeBlock(0, {}).size();
        const QByteArray payload = m_image.mid((sequence - 1) * 1024, isLarge ? 1024 : 128);
        const QByteArray expected = !isLarge        ? YmodemFrames::smallBlock(sequence, payload)
                                    : sequence == 1 ? YmodemFrames::largeBlock(1, payload, '\0')
                                                    : YmodemFrames::largeBlock(sequence, payload);
        fuzzCheck(pack == expected, "a block of the image");
    }

    const uint8_t *m_next;
    const uint8_t *m_end;
    QByteArray m_image;
    class_ymodem m_sender;
    unsigned m_percent = 0;
    bool m_losesCompletion = false;
    bool m_ended = false;
};

} // namespace

void fuzzYmodem(const uint8_t *input, std::size_t size)
{
    if (size < 2)
        return;
    VirtualTime &time = VirtualTime::current();
    const int imageSize = (input[0] | input[1] << 8) % (kLargestImage + 1);
    Script(input + 2, size - 2, testImage(imageSize)).run(time);
    time.advance(100); // lets go of what was armed for a sender that is gone
}
