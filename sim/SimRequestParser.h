#pragma once

#include "sim/SimClock.h"
#include "sim/SimJournal.h"

#include <QByteArray>

#include <vector>

/// Cuts what a host sends on a serial line into poll pairs and request frames. What is neither is rubbish.
class SimRequestParser
{
public:
    struct Item
    {
        SimRecord::Kind kind;
        QByteArray bytes;
    };

    /// Adds bytes that came at that time and returns what has become whole. An unfinished frame is given up
    /// when the line has been quiet behind it.
    std::vector<Item> feed(const QByteArray &bytes, SimTime now);

private:
    bool takeNext(std::vector<Item> &items);
    bool takeRequest(std::vector<Item> &items);
    void take(SimRecord::Kind kind, int count, std::vector<Item> &items);
    void discard(int count, std::vector<Item> &items);

    QByteArray m_buffer;
    SimTime m_last;
};
