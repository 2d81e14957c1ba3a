#pragma once

#include <QString>

#include <cstdint>

struct Sample;

/// Appends the samples of one sensor to a comma-separated file, one file a run.
///
/// Every line is written by one operation between an open and a close, so that a crash loses at most the
/// sample in hand. A line that does not fit on the disk is taken back whole.
class SampleRecorder
{
public:
    /// What the log says of a sample that was lost.
    static constexpr const char *kFailure = "文件夹打开失败";

    /// infIdx: bus entry from 0; the file name counts from 1.
    SampleRecorder(const QString &folder, uint8_t infIdx, uint8_t addr);

    /// Appends a sample; starts a file when no run is on. False for a sample that could not be written: it is
    /// lost with a log line and the run goes on.
    bool append(const Sample &sample);
    /// The file of the run; empty when none is on.
    QString fileName() const { return saveFileName; }
    /// What the system had against the latest sample; empty when it was written.
    QString error() const { return m_error; }
    /// The next sample starts a new file.
    void endRun() { saveFileName.clear(); }

private:
    QString savePath;
    QString saveFileName; ///< empty: no run
    QString m_error;
    uint8_t m_infIdx;
    uint8_t m_addr;
};
