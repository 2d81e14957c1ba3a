#pragma once

#include <iterator>
#include <random>

/// Seeded chance of one actor.
class Chance
{
public:
    explicit Chance(unsigned seed)
        : m_random(seed)
    {}

    /// 0 to limit - 1.
    int draw(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
    bool oneIn(int times) { return draw(times) == 0; }
    template<typename List>
    auto &oneOf(List &list)
    {
        return *std::next(std::begin(list), draw(static_cast<int>(std::size(list))));
    }

private:
    std::mt19937 m_random;
};
