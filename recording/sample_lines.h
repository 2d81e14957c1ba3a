#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <cstdint>

struct Sample;

/// Whose sample a line tells.
struct SampleSource
{
    uint8_t infIdx = 0; ///< bus entry from 0; the lines count from 1
    uint8_t addr = 0;
    QString model;
    QString serialNumber;
};

/// Samples as lines of text for other programs: UTF-8, numbers with a point, a line feed at the end.

/// A heading for each column: time_ms, counter, ch0, …, normal_force_n_0, tangential_force_n_0,
/// direction_deg_0, …, self_proximity_0, …, mutual_proximity_0, …, status.
QByteArray csvHeadings(const Sample &sample);
/// time: since 1970, UTC.
QByteArray csvLine(const Sample &sample, std::chrono::milliseconds time);
/// An object with the source, and every value under the name that it has as a column. What is no number is
/// null.
QByteArray jsonLine(const Sample &sample, std::chrono::milliseconds time, const SampleSource &source);
