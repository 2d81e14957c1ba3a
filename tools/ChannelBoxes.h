#pragma once

#include <array>
#include <cstdint>

class QCheckBox;

/// The check boxes of the multiplexer's channels, and those of the adapter boards, which follow the channels
/// they are wired to and lead them. The boxes belong to their form and outlive this.
class ChannelBoxes
{
public:
    using Channels = std::array<QCheckBox *, 8>; ///< in the order of the bits
    using Boards = std::array<QCheckBox *, 6>;   ///< in the order of the adapter boards, the first is row 1

    ChannelBoxes(const Channels &channels, const Boards &boards);

    uint8_t mask() const;
    void show(uint8_t mask);

private:
    Channels m_channels;
};
