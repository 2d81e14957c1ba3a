#include "link/class_ch341.h"
#include "link/class_ch347.h"
#include "tests/fuzz/fuzz_inputs.h"
#include "tests/link/fake_vendor.h"

namespace {

constexpr std::size_t kRoomOfText = 64;

template<typename Bridge>
void list(Bridge &bridge, int most)
{
    QVector<uint16_t> listed{1, 2, 3};
    const auto connection = QObject::connect(&bridge, &Bridge::si_updateList, &bridge,
                                             [&listed](const QVector<uint16_t> &ids) { listed = ids; });
    bridge.getScanSignal();
    QObject::disconnect(connection);
    fuzzCheck(listed.size() <= most, "a bridge for each name at most");
    for (const uint16_t id : qAsConst(listed)) {
        bridge.open(id);
        bridge.close();
        fuzzCheck(!bridge.isOpen(), "what was opened is closed");
    }
}

} // namespace

void fuzzDevicePath(const uint8_t *input, std::size_t size)
{
    static auto *ch341 = new class_ch341;
    static auto *ch347 = new class_ch347;
    vendor().listens = false;
    const std::string text(reinterpret_cast<const char *>(input), std::min(size, kRoomOfText));
    vendor().setDevices({{0, text}, {3, "usb#PID_5512#" + text}, {5, "#&" + text}});
    list(*ch341, 3);
    list(*ch347, 3);
    vendor().setDevices({});
}
