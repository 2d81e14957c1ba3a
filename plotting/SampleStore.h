#pragma once

#include <QVector>

#include <vector>

/// Rows of values with their times, the newest of them: a ring that grows up to its limits and then lets the
/// oldest go.
class SampleStore
{
public:
    struct Limits
    {
        double seconds; ///< rows older than this, seen from the newest, go
        qint64 cells;   ///< the most values and times in memory
    };

    SampleStore(int width, Limits limits);

    /// The row must have as many values as the store is wide. Time never runs backwards: where the clock of
    /// the rows was set back, they go on from where they stood.
    void append(double seconds, const QVector<double> &values);

    int width() const { return static_cast<int>(m_columns.size()) - 1; }
    int size() const { return static_cast<int>(m_size); }
    double time(int row) const { return m_columns.front()[place(row)]; }
    double value(int row, int column) const { return m_columns[static_cast<size_t>(column) + 1][place(row)]; }
    /// The first row at or after that time; size() if there is none.
    int firstRowFrom(double seconds) const;

private:
    size_t place(int row) const { return (m_first + static_cast<size_t>(row)) % m_columns.front().size(); }
    void dropOldest();
    void grow(size_t rows);

    Limits m_limits;
    size_t m_maxRows;
    std::vector<std::vector<double>> m_columns; ///< times, then values
    size_t m_first = 0;
    size_t m_size = 0;
    double m_shift = 0; ///< what the clock of the rows was set back by
};
