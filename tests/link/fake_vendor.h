#pragma once

#include <QStringList>

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

/// What the bridge operations answer.
struct FakeAnswers
{
    QStringList portNames;
    bool opens = true;
    int successes = -1;          ///< packets that still succeed, negative for all
    bool reportsNothing = false; ///< packets succeed but report a length of 0
    uint32_t reportedRead = 0;   ///< length that a read reports, 0 for the whole
    uint32_t result = 1;         ///< of the operations that only set something
    uint32_t pins = 0;
    uint8_t nextByte = 0; ///< next byte that a read delivers
    bool listens = true;  ///< writes calls down
    /// Fills what a read delivers, instead of counting on from nextByte.
    std::function<void(uint8_t *buffer, uint32_t length)> deliver;
};

/// The bridge operations of these tests, linked or loaded as a library: writes down what it is asked, answers
/// what the test has set. One for the process. A call is written down as its name without the family, then
/// index and arguments: "write 0 AA7500".
///
/// What several threads touch is made of standard types only, whose hand-over the thread sanitizer can see.
class FakeVendor : public FakeAnswers
{
public:
    /// Forgets everything.
    void reset();

    /// Device path (CH341) or id text (CH347) of each index that exists.
    void setDevices(const std::map<uint32_t, std::string> &texts);
    /// Ids of the bridges that are plugged in, by index, with texts that are right for both families.
    void setIds(const std::vector<int> &ids);

    /// The calls since the last time, with bars between them.
    QString takeCalls();
    void note(const QString &call);

    /// Empty when nothing has that index.
    std::string textOf(uint32_t index) const;
    /// Calls the registered routine on the calling thread, the way a provider does.
    void notify(uint32_t status);
    void setRoutine(void (*routine)(uint32_t));
    bool takeSuccess();

private:
    mutable std::mutex m_mutex; // guards the members below
    std::map<uint32_t, std::string> m_texts;
    std::vector<std::string> m_calls;

    std::recursive_mutex m_routineMutex; // guards m_routine, held while it runs
    void (*m_routine)(uint32_t) = nullptr;
};

FakeVendor &vendor();
