#pragma once

#include <array>
#include <cstdint>

/// An eight-channel bus multiplexer at address 0x70: one control byte, one bit a channel.
class SimPca9548
{
public:
    static constexpr uint8_t kAddress = 0x70;
    static constexpr int kChannelCount = 8;

    /// What a broken channel does whatever the control byte says.
    enum class Stuck { Not, Connected, Disconnected };

    bool acknowledges(uint8_t address) const { return address == kAddress && !m_dead && !m_inReset; }
    void write(uint8_t control);
    uint8_t read() const { return m_control; }
    bool connects(int channel) const;
    /// Level of the reset input: low clears the control byte and holds the chip.
    void setResetLevel(bool high);

    void setDead(bool dead) { m_dead = dead; }
    void setStuck(int channel, Stuck stuck);

private:
    uint8_t m_control = 0;
    bool m_inReset = false;
    bool m_dead = false;
    std::array<Stuck, kChannelCount> m_stuck{};
};
