#include "tests/link/fake_vendor.h"

void FakeVendor::reset()
{
    setRoutine(nullptr);
    setDevices({});
    takeCalls();
    static_cast<FakeAnswers &>(*this) = {};
}

void FakeVendor::setDevices(const std::map<uint32_t, std::string> &texts)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_texts = texts;
}

void FakeVendor::setIds(const std::vector<int> &ids)
{
    std::map<uint32_t, std::string> texts;
    for (const int id : ids) {
        const QString text = QString::asprintf("usb#PID_5512&%X#%d&a&b&%d", id, id / 1000, id % 1000);
        texts[static_cast<uint32_t>(texts.size())] = text.toStdString();
    }
    setDevices(texts);
}

QString FakeVendor::takeCalls()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    QStringList calls;
    for (const std::string &call : m_calls)
        calls.append(QString::fromStdString(call));
    m_calls.clear();
    return calls.join(QLatin1Char('|'));
}

void FakeVendor::note(const QString &call)
{
    if (!listens)
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.push_back(call.toStdString());
}

std::string FakeVendor::textOf(uint32_t index) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_texts.find(index);
    return found != m_texts.end() ? found->second : std::string();
}

void FakeVendor::notify(uint32_t status)
{
    const std::lock_guard<std::recursive_mutex> lock(m_routineMutex);
    if (m_routine != nullptr)
        m_routine(status);
}

void FakeVendor::setRoutine(void (*routine)(uint32_t))
{
    const std::lock_guard<std::recursive_mutex> lock(m_routineMutex);
    if (routine == nullptr && m_routine != nullptr)
        m_routine(0); // once more while it is being taken away, which a library may well do
    m_routine = routine;
}

bool FakeVendor::takeSuccess()
{
    if (successes > 0)
        return successes-- > 0;
    return successes < 0;
}
