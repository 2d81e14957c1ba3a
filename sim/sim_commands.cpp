#include "sim/sim_commands.h"

#include "sim/sim_frame.h"

#include <algorithm>
#include <array>
#include <type_traits>

namespace {

using Context = const SimCommandContext &;
using Frame = const QByteArray &;

constexpr uint8_t kDone = 0;
constexpr uint8_t kBadIndex = 1;
constexpr uint8_t kFirmwareVersion[] = {1, 4, 2};
constexpr uint32_t kCentiDegrees = 2537;

uint8_t byteOf(Frame request, int index)
{
    return static_cast<uint8_t>(simValue(request, index, 1));
}

QByteArray nothing(Context, Frame)
{
    return {};
}

QByteArray done(Context, Frame)
{
    return simSinglePayload(kDone);
}

QByteArray word(uint32_t value, uint8_t behind)
{
    QByteArray payload;
    simAppend(payload, value, 4);
    simAppend(payload, behind, 1);
    return payload;
}

template<typename Value>
QByteArray listOf(const std::vector<Value> &values)
{
    QByteArray payload;
    for (const Value value : values)
        simAppend(payload, value, static_cast<int>(sizeof(Value)));
    return payload;
}

template<auto List>
QByteArray list(Context context, Frame)
{
    return listOf(context.settings.*List);
}

void appendFloats(QByteArray &payload, const std::vector<float> &values)
{
    for (const float value : values)
        simAppend(payload, simFloatBits(value), 4);
}

/// Stores the value that follows the channel byte into the channel's place of the list.
template<auto List>
QByteArray storeOfChannel(Context context, Frame request)
{
    auto &list = context.settings.*List;
    const std::size_t channel = byteOf(request, 4);
    if (channel >= list.size())
        return simSinglePayload(kBadIndex);
    auto &value = list[channel];
    value = static_cast<std::decay_t<decltype(value)>>(simValue(request, 5, static_cast<int>(sizeof(value))));
    return simSinglePayload(kDone);
}

QByteArray storeFilter(Context context, Frame request)
{
    SimSettings &settings = context.settings;
    const std::size_t channel = byteOf(request, 4);
    if (channel >= settings.filterDepths.size())
        return simSinglePayload(kBadIndex);
    settings.filterDepths[channel] = byteOf(request, 5);
    settings.filterLimits[channel] = byteOf(request, 6);
    settings.filterFactors[channel] = simFloat(simValue(request, 7, 4));
    return simSinglePayload(kDone);
}

QByteArray filters(Context context, Frame)
{
    const SimSettings &settings = context.settings;
    QByteArray payload = listOf(settings.filterDepths) + listOf(settings.filterLimits);
    appendFloats(payload, settings.filterFactors);
    return payload;
}

QByteArray dacs(Context context, Frame)
{
    QByteArray payload;
    for (uint32_t channel = 0; channel < context.model.chNum; ++channel) {
        simAppend(payload, 10 + channel, 1);
        simAppend(payload, 20 + channel, 1);
        simAppend(payload, 3000 + channel, 2);
    }
    return payload;
}

template<auto Maximum, auto Scale>
QByteArray release(Context context, Frame)
{
    return word(context.settings.*Maximum, context.settings.*Scale);
}

template<auto Maximum, auto Scale>
QByteArray storeRelease(Context context, Frame request)
{
    context.settings.*Maximum = simValue(request, 4, 4);
    context.settings.*Scale = byteOf(request, 8);
    return simSinglePayload(kDone);
}

QByteArray storeProximityClear(Context context, Frame request)
{
    context.settings.proximityClearsTouch = byteOf(request, 4);
    context.settings.proximityClearDelayMs = simValue(request, 5, 4);
    return simSinglePayload(kDone);
}

QByteArray proximityClear(Context context, Frame)
{
    QByteArray payload;
    simAppend(payload, context.settings.proximityClearsTouch, 1);
    simAppend(payload, context.settings.proximityClearDelayMs, 4);
    return payload;
}

QByteArray counts(Context context, Frame)
{
    const finger_info_ts &model = context.model;
    QByteArray payload;
    for (const uint16_t count :
         {model.chNum, model.forceChNum, model.yddsNum, model.sProxNum, model.mProxNum})
        simAppend(payload, count, 1);
    return payload;
}

// The new value is the noise that the sensor measures on an idle pad, times the ratio asked for.
QByteArray findThresholds(Context context, Frame request)
{
    constexpr uint32_t idleNoise = 15;
    const uint32_t threshold = std::max(simValue(request, 5, 4), idleNoise * byteOf(request, 4));
    std::fill(context.settings.thresholds.begin(), context.settings.thresholds.end(), threshold);
    return {};
}

// Comes in hundredths of a newton; thresholds are in thousandths.
QByteArray storeTouchThreshold(Context context, Frame request)
{
    std::fill(context.settings.thresholds.begin(), context.settings.thresholds.end(),
              simValue(request, 5, 4) * 10);
    return simSinglePayload(kDone);
}

QByteArray storePoint(Context context, Frame request)
{
    auto &curves = context.settings.curves;
    const std::size_t channel = byteOf(request, 4);
    const std::size_t point = byteOf(request, 5);
    if (channel >= curves.size() || point >= curves[channel].size())
        return simSinglePayload(kBadIndex);
    curves[channel][point] = simValue(request, 6, request.size() - 8);
    return simSinglePayload(kDone);
}

QByteArray storeCurve(Context context, Frame request)
{
    auto &curves = context.settings.curves;
    const std::size_t channel = byteOf(request, 4);
    if (channel >= curves.size())
        return simSinglePayload(kBadIndex);
    for (std::size_t point = 0; point < curves[channel].size(); ++point)
        curves[channel][point] = simValue(request, 5 + 4 * static_cast<int>(point), 4);
    return simSinglePayload(kDone);
}

QByteArray curve(Context context, Frame request)
{
    const auto &curves = context.settings.curves;
    const std::size_t channel = byteOf(request, 4);
    return listOf(channel < curves.size() ? curves[channel] : std::vector<uint32_t>(context.model.caliNum));
}

QByteArray forcePoints(Context context, Frame)
{
    QByteArray payload;
    simAppend(payload, static_cast<uint32_t>(context.settings.forcePoints.size()), 1);
    appendFloats(payload, context.settings.forcePoints);
    return payload;
}

uint8_t verdictOn(const std::vector<uint32_t> &curve)
{
    constexpr uint8_t good = 0;
    constexpr uint8_t notCalibrated = 1;
    constexpr uint8_t notRising = 2;
    if (std::all_of(curve.begin(), curve.end(), [](uint32_t value) { return value == 0; }))
        return notCalibrated;
    const auto stall = std::adjacent_find(curve.begin(), curve.end(), std::greater_equal<>());
    return stall == curve.end() ? good : notRising;
}

QByteArray verdicts(Context context, Frame)
{
    QByteArray payload;
    for (const auto &one : context.settings.curves)
        simAppend(payload, verdictOn(one), 1);
    return payload;
}

QByteArray storeAddress(Context context, Frame request)
{
    const uint8_t address = byteOf(request, 7);
    if (address >= 0x01 && address <= 0x6F)
        context.settings.address = address;
    return simSinglePayload(context.settings.address);
}

QByteArray storeStartPosition(Context context, Frame request)
{
    context.settings.startPosition = byteOf(request, 7);
    return {};
}

QByteArray temperature(Context context, Frame)
{
    const double centi = kCentiDegrees + static_cast<double>(context.settings.temperatureCalibration) * 100.0;
    return word(static_cast<uint32_t>(centi), 0);
}

QByteArray storeTemperature(Context context, Frame request)
{
    context.settings.temperatureCalibration = simFloat(simValue(request, 4, 4));
    return simSinglePayload(kDone);
}

QByteArray restoreFactory(Context context, Frame)
{
    context.settings.restoreFactory(context.model);
    return simSinglePayload(kDone);
}

QByteArray storeEnable(Context context, Frame request)
{
    auto &enabled = context.settings.enabled;
    const std::size_t channel = byteOf(request, 4);
    if (channel >= enabled.size())
        return simSinglePayload(kBadIndex);
    enabled[channel] = byteOf(request, 7);
    return simSinglePayload(kDone);
}

QByteArray checkChannel(Context context, Frame request)
{
    return simSinglePayload(byteOf(request, 4) < context.model.chNum ? kDone : kBadIndex);
}

QByteArray storeSendType(Context context, Frame request)
{
    context.settings.sendType = byteOf(request, 7);
    return simSinglePayload(kDone);
}

QByteArray version(Context context, Frame)
{
    QByteArray payload;
    for (const uint8_t part : kFirmwareVersion)
        simAppend(payload, part, 1);
    simAppend(payload, context.model.prg, 1);
    return payload + QByteArray(1, '\0');
}

QByteArray lengthAndText(const QByteArray &text)
{
    QByteArray payload;
    simAppend(payload, static_cast<uint32_t>(text.size()), 1);
    return payload + text;
}

QByteArray storeSerialNumber(Context context, Frame request)
{
    context.settings.serialNumber = request.mid(5, byteOf(request, 4));
    return simSinglePayload(kDone);
}

QByteArray storeText(Context context, Frame request)
{
    context.settings.text = request.mid(5, byteOf(request, 4));
    return simSinglePayload(kDone);
}

struct Command
{
    uint8_t code;
    QByteArray (*execute)(Context, Frame);
};

// Commands with an answer of a kind of their own, or a bare acknowledgement.
constexpr auto kOtherCommands = std::array{
    Command{0x41, [](Context c, Frame) { return simSinglePayload(c.settings.autoDacAtPowerUp); }},
    Command{0x44, release<&SimSettings::pressReleaseMaximum, &SimSettings::pressReleaseScale>},
    Command{0x46, release<&SimSettings::proximityReleaseMaximum, &SimSettings::proximityReleaseScale>},
    Command{0x4A, dacs},
    Command{0x51, list<&SimSettings::excitations>},
    Command{0x53, list<&SimSettings::ranges>},
    Command{0x5A, filters},
    Command{0x5C, proximityClear},
    Command{0x5E, list<&SimSettings::touchTimeoutsMs>},
    Command{0x62, counts},
    Command{0x64, [](Context c, Frame) { return simSinglePayload(c.sensorStatus); }},
    Command{0x66, curve},
    Command{0x68, list<&SimSettings::thresholds>},
    Command{0x6C, [](Context c, Frame) { return word(static_cast<uint32_t>(c.sampleRateHz), 0); }},
    Command{0x6D, forcePoints},
    Command{0x6F, verdicts},
    Command{0x71, [](Context c, Frame) { return simSinglePayload(c.settings.address); }},
    Command{0x74, temperature},
    Command{0x7D, list<&SimSettings::normalCurve>},
    Command{0x7E, checkChannel},
    Command{0xA0, [](Context, Frame) { return QByteArrayLiteral("Nov 22 202614:05:09"); }},
    Command{0xA2, [](Context c, Frame) { return simSinglePayload(c.model.prg); }},
    Command{0xA4, [](Context c, Frame) { return lengthAndText(c.settings.serialNumber); }},
    Command{0xA6, version},
    Command{0xA7, [](Context, Frame) { return QByteArrayLiteral("SIM-CHIP"); }},
    Command{0xA9, [](Context c, Frame) { return lengthAndText(c.settings.text); }},
    Command{0xAA,
            [](Context c, Frame) {
                return QByteArray(1, '\0') + word(static_cast<uint32_t>(c.upTime.count()), 0).left(4);
            }},
    Command{0x56,
            [](Context c, Frame r) {
                c.settings.measuringMode = byteOf(r, 4);
                return QByteArray();
            }},
    Command{0x63, nothing},
    Command{0x67, findThresholds},
    Command{0x70, storeAddress},
    Command{0x73, storeStartPosition},
    Command{0x77, nothing},
    Command{0x79, nothing},
    Command{0x7A, [](Context, Frame) { return QByteArray(21, '\0'); }},
    Command{0xA1, nothing},
};

// Commands whose answer reports success or the reason of a refusal.
constexpr auto kSetCommands = std::array{
    Command{0x40,
            [](Context c, Frame r) {
                c.settings.autoDacAtPowerUp = byteOf(r, 4);
                return simSinglePayload(kDone);
            }},
    Command{0x42, storeCurve},
    Command{0x43, storeRelease<&SimSettings::pressReleaseMaximum, &SimSettings::pressReleaseScale>},
    Command{0x45, storeRelease<&SimSettings::proximityReleaseMaximum, &SimSettings::proximityReleaseScale>},
    Command{0x50, storeOfChannel<&SimSettings::excitations>},
    Command{0x52, storeOfChannel<&SimSettings::ranges>},
    Command{0x54, done},
    Command{0x55, done},
    Command{0x59, storeFilter},
    Command{0x5B, storeProximityClear},
    Command{0x5D, storeOfChannel<&SimSettings::touchTimeoutsMs>},
    Command{0x61, done},
    Command{0x65, storePoint},
    Command{0x69, storeOfChannel<&SimSettings::thresholds>},
    Command{0x6A, storeTouchThreshold},
    Command{0x6B, done},
    Command{0x6E, done},
    Command{0x72, done},
    Command{0x75, storeTemperature},
    Command{0x76, restoreFactory},
    Command{0x78, storeOfChannel<&SimSettings::normalCurve>},
    Command{0x7B, storeEnable},
    Command{0x7C, checkChannel},
    Command{0x7F, storeSendType},
    Command{0xA5, storeSerialNumber},
    Command{0xA8, storeText},
};

template<typename Commands>
const Command *find(const Commands &commands, uint8_t code)
{
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [code](const Command &command) { return command.code == code; });
    return found == commands.end() ? nullptr : &*found;
}

} // namespace

std::optional<QByteArray> simExecute(const SimCommandContext &context, const QByteArray &request)
{
    const uint8_t code = byteOf(request, 3);
    const Command *command = find(kSetCommands, code);
    if (command == nullptr)
        command = find(kOtherCommands, code);
    if (command == nullptr)
        return std::nullopt;
    return command->execute(context, request);
}

QByteArray simSinglePayload(uint8_t value)
{
    QByteArray payload(5, '\0');
    payload[3] = static_cast<char>(value);
    return payload;
}

bool simReportsStatus(uint8_t command)
{
    return find(kSetCommands, command) != nullptr;
}

SimRequestLengths simRequestLengths(uint8_t command)
{
    constexpr int usual = 11;
    constexpr int openEnded = 300;
    switch (command) {
    case 0x42:
    case 0xA5:
    case 0xA8:
        return {usual - 3, openEnded};
    case 0x59:
        return {13, 13};
    case 0x65:
        return {usual, 12};
    default:
        return {usual, usual};
    }
}
