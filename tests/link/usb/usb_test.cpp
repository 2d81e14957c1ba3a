#include "tests/link/usb/usb_test.h"

#include <cstdio>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uid_t kNobody = 65534;
constexpr int kSkipped = 77;

std::atomic<int> fenceNotices{0};

void countFenceNotice(uint32_t)
{
    ++fenceNotices;
}

} // namespace

#if defined(__SANITIZE_THREAD__)
/// What the fake bus brings along and is not built with the sanitizer: the order that these libraries keep
/// does not show.
extern "C" const char *__tsan_default_suppressions()
{
    return "race:libudev.so\n"
           "race:libgobject-2.0.so\n";
}
#endif

bool passFence(FakeUsbDevice &fence, uint32_t (*setNotify)(uint32_t, const char *, void (*)(uint32_t)))
{
    fenceNotices = 0;
    setNotify(0, nullptr, countFenceNotice);
    fence.plug();
    fence.unplug();
    const bool passed = QTest::qWaitFor([] { return fenceNotices == 2; }, 30000);
    setNotify(0, nullptr, nullptr);
    return passed;
}

QByteArray counted(int length)
{
    QByteArray bytes;
    for (int i = 0; i < length; ++i)
        bytes.append(static_cast<char>(i));
    return bytes;
}

QByteArray hexOf(const Bytes &bytes)
{
    return QByteArray(reinterpret_cast<const char *>(bytes.data()), static_cast<int>(bytes.size()))
        .toHex()
        .toUpper();
}

QList<QByteArray> hexOf(const std::vector<Bytes> &transfers)
{
    QList<QByteArray> texts;
    for (const Bytes &transfer : transfers)
        texts.append(hexOf(transfer));
    return texts;
}

RefusedAccess::RefusedAccess(const FakeUsbBus &bus, const std::string &node)
    : m_path(bus.realPath(node))
{
    ::chmod(m_path.c_str(), 0);
    // The bus itself is to stay reachable: its folder, and the socket through which a node is spoken to.
    ::chmod(bus.realPath("").c_str(), 0755);
    ::chmod(bus.realPath("/ioctl" + node).c_str(), 0666);
    if (::geteuid() == 0 && ::seteuid(kNobody) != 0)
        qFatal("root cannot become nobody");
}

RefusedAccess::~RefusedAccess()
{
    if (::getuid() == 0 && ::seteuid(0) != 0)
        qFatal("nobody cannot become root again");
    ::chmod(m_path.c_str(), 0600);
}

int runUsbTest(int argc, char **argv, const std::function<QObject *(FakeUsbBus &)> &make)
{
    if (!FakeUsbBus::isPossible()) {
        std::puts("this test runs under umockdev-wrapper only");
        return kSkipped;
    }
    // Static, so that the providers' own statics, which come later, are gone when it goes.
    static FakeUsbBus bus;
    const QCoreApplication application(argc, argv);
    const std::unique_ptr<QObject> test(make(bus));
    return QTest::qExec(test.get(), argc, argv);
}
