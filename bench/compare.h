#pragma once

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

/// Runs both by turns, prints the medians of one turn each and their ratio, which does not depend on how fast
/// the machine is. Each is called `times` times a turn, with the number of the call.
template<typename Ours, typename Reference>
void compare(const char *what, int times, Ours ours, Reference reference)
{
    constexpr int kRounds = 9;
    const auto microseconds = [times](auto &work) {
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < times; ++i)
            work(i);
        return static_cast<double>(timer.nsecsElapsed()) / 1000.0 / times;
    };
    const auto median = [](std::vector<double> values) {
        std::sort(values.begin(), values.end());
        return values.at(values.size() / 2);
    };
    std::vector<double> mine;
    std::vector<double> theirs;
    for (int round = 0; round < kRounds; ++round) {
        mine.push_back(microseconds(ours));
        theirs.push_back(microseconds(reference));
    }
    std::printf("%s: %.2f us against %.2f us, ratio %.3f\n", what, median(mine), median(theirs),
                median(mine) / median(theirs));
}
