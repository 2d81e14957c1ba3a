#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>

class SensorLink;

/// Talks to whatever sensor is plugged in, by the address that all of them obey. Blocks for the time of an
/// exchange.
class GeneralCall
{
public:
    struct Answer
    {
        uint8_t command;
        std::optional<uint8_t> address; ///< where the answer tells it
    };

    explicit GeneralCall(SensorLink &link)
        : m_link(link)
    {}

    /// Tells the sensor a new address if there is a target, then asks for the address it has. Nothing when
    /// nobody is there, or when the link has been lost over it. Sums are not tested.
    std::optional<Answer> ask(std::optional<uint8_t> target);

private:
    std::optional<Answer> askOverPort(std::optional<uint8_t> target);
    std::optional<Answer> askOverBridge(std::optional<uint8_t> target);
    static std::optional<Answer> answerIn(const QByteArray &bytes);

    SensorLink &m_link;
};

/// True for the answer to a new address.
bool isAddressSet(const GeneralCall::Answer &answer);
