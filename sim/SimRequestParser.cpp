#include "sim/SimRequestParser.h"

#include "sim/sim_commands.h"
#include "sim/sim_frame.h"

#include <algorithm>

namespace {

constexpr std::chrono::milliseconds kGap{20};
constexpr uint8_t kFirstSync = 0xAA;
constexpr uint8_t kSecondSync = 0x55;

uint8_t byteAt(const QByteArray &bytes, int index)
{
    return static_cast<uint8_t>(bytes.at(index));
}

} // namespace

std::vector<SimRequestParser::Item> SimRequestParser::feed(const QByteArray &bytes, SimTime now)
{
    std::vector<Item> items;
    if (!m_buffer.isEmpty() && now - m_last > kGap)
        discard(m_buffer.size(), items);
    m_last = now;
    m_buffer += bytes;
    while (takeNext(items)) {
    }
    return items;
}

// The sync bytes are each other's complement too, but no sensor has so high an address.
bool SimRequestParser::takeNext(std::vector<Item> &items)
{
    if (m_buffer.size() < 2)
        return false;
    const uint8_t first = byteAt(m_buffer, 0);
    const uint8_t second = byteAt(m_buffer, 1);
    if (first == kFirstSync && second == kSecondSync)
        return takeRequest(items);
    if (first < 0x80 && (first ^ 0xFF) == second)
        take(SimRecord::Kind::Poll, 2, items);
    else
        discard(1, items);
    return true;
}

// Nothing in a frame tells its length, only the sum does.
bool SimRequestParser::takeRequest(std::vector<Item> &items)
{
    if (m_buffer.size() < 4)
        return false;
    const SimRequestLengths lengths = simRequestLengths(byteAt(m_buffer, 3));
    for (int size = lengths.shortest; size <= std::min(lengths.longest, m_buffer.size()); ++size) {
        if (simSumFits(m_buffer.left(size))) {
            take(SimRecord::Kind::Request, size, items);
            return true;
        }
    }
    if (m_buffer.size() < lengths.longest)
        return false;
    discard(1, items);
    return true;
}

void SimRequestParser::take(SimRecord::Kind kind, int count, std::vector<Item> &items)
{
    items.push_back({kind, m_buffer.left(count)});
    m_buffer.remove(0, count);
}

void SimRequestParser::discard(int count, std::vector<Item> &items)
{
    const QByteArray rubbish = m_buffer.left(count);
    m_buffer.remove(0, count);
    if (!items.empty() && items.back().kind == SimRecord::Kind::Rubbish)
        items.back().bytes += rubbish;
    else
        items.push_back({SimRecord::Kind::Rubbish, rubbish});
}
