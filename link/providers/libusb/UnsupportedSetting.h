#pragma once

#include <QDebug>

#include <atomic>

/// A setting of the CH347 for which no command of the chip is known. It counts as made, the chip stays as it
/// is, and that is said once in the life of the process.
class UnsupportedSetting
{
public:
    constexpr explicit UnsupportedSetting(const char *name)
        : m_name(name)
    {}

    void note(uint32_t value)
    {
        if (!m_noted.exchange(true))
            qDebug("%s %u: no command of the chip is known for it, the chip keeps its own", m_name, value);
    }

private:
    const char *m_name;
    std::atomic<bool> m_noted{false};
};
