// The first byte chooses the link, one more each step; what comes from the wire follows it.

#include "engine/CommandQueue.h"
#include "engine/Discovery.h"
#include "engine/Sampling.h"
#include "link/SensorLink.h"
#include "protocol/frames.h"
#include "sim/SimPty.h"
#include "tests/fuzz/FuzzBytes.h"
#include "tests/fuzz/fuzz_inputs.h"
#include "tests/link/fake_vendor.h"

#include <QSerialPort>

using namespace std::chrono_literals;

namespace {

/// In place of an answer on the serial line: the worker is stopped.
constexpr uint8_t kStop = 0x3F;

/// The steps of a worker on a link that says what the input says.
class WorkerScript
{
public:
    WorkerScript(FuzzBytes input, SensorLink &link, SimPty &pty)
        : m_input(input)
        , m_link(link)
        , m_pty(pty)
        , m_bus(link, {[this](std::chrono::milliseconds) { hearLine(); }, [] {}})
    {
        vendor().deliver = [this](uint8_t *buffer, uint32_t length) {
            const QByteArray bytes = m_input.answer(static_cast<int>(length));
            std::fill_n(buffer, length, uint8_t{0});
            std::copy_n(bytes.begin(), std::min<int>(bytes.size(), static_cast<int>(length)), buffer);
        };
        QObject::connect(&m_discovery, &Discovery::found, &m_discovery, [this](const sensor_ts &sensor) {
            fuzzCheck(sensor.addr >= 0x01 && sensor.addr <= 0x6F, "a sensor has an address of sensors");
            fuzzCheck(sensor.pack.size() > 4 && !sensor.sn.isEmpty(), "and a frame, and a name");
            m_entries[sensor.infIdx].sensors.append(sensor);
        });
        QObject::connect(&m_sampling, &Sampling::sampled, &m_sampling,
                         [](uint8_t, uint8_t, const QVector<uint8_t> &pack) {
                             fuzzCheck(frameSumFits(pack.constData(), pack.size()), "a sample is whole");
                         });
        QObject::connect(&m_queue, &CommandQueue::answered, &m_queue,
                         [](uint8_t, uint8_t, const QByteArray &req, const QByteArray &rsp) {
                             fuzzCheck((req.at(3) | '\x80') == rsp.at(3) && frameSumFits(rsp),
                                       "an answer is whole, and to its request");
                         });
    }
    ~WorkerScript() { vendor().deliver = nullptr; }
    Q_DISABLE_COPY(WorkerScript)

    void run()
    {
        while (!m_input.isAtEnd()) {
            m_bus.beginTick();
            const uint8_t choice = m_input.byte();
            step(choice % 8, static_cast<uint8_t>(choice / 8 % m_entries.size()));
        }
        // Three attempts to each request, and nothing of it is left for the next run.
        for (int attempts = 3 * m_requests; attempts > 0; --attempts)
            m_queue.wrCmdSensor(0);
    }

private:
    void step(int what, uint8_t entry)
    {
        switch (what) {
        case 0:
            m_sampling.publishRates();
            break;
        case 1:
            m_discovery.setSync();
            break;
        case 2:
            m_bus.probeMultiplexer();
            break;
        case 3:
            request(entry);
            break;
        case 4:
            m_queue.wrCmdSensor(entry);
            break;
        case 5:
            m_sampling.ageSensors(800ms);
            m_sampling.readSensors();
            break;
        default:
            m_discovery.scanSensor(entry);
            break;
        }
    }

    void request(uint8_t entry)
    {
        cmd_ts command;
        command.infIdx = entry;
        command.addr = m_input.byte();
        command.cmd = "\xAA\x55\x03" + m_input.take(9).leftJustified(9, '\0');
        const uint8_t length = m_input.byte();
        command.rspLen = length == 0xFF ? kUnknownResponse : length;
        m_queue.append(command);
        ++m_requests;
    }

    // The serial line speaks while the host sleeps.
    void hearLine()
    {
        if (m_link.isBridge() || m_input.isAtEnd())
            return;
        m_pty.readAll();
        const uint8_t length = m_input.byte();
        if (length == kStop) {
            m_bus.invalidate();
            for (info_ts &entry : m_entries)
                entry.sensors.clear();
            return;
        }
        const QByteArray bytes = m_input.answer(length);
        const qint64 all = m_link.port()->bytesAvailable() + bytes.size();
        m_pty.write(bytes);
        while (m_link.port()->bytesAvailable() < all && m_link.port()->waitForReadyRead(100)) {
        }
    }

    FuzzBytes m_input;
    SensorLink &m_link;
    SimPty &m_pty;
    SensorBus m_bus;
    QVector<info_ts> m_entries{6};
    Discovery m_discovery{m_bus, m_entries};
    Sampling m_sampling{m_bus, m_entries};
    CommandQueue m_queue{m_bus, m_entries};
    int m_requests = 0;
};

} // namespace

void fuzzWorker(const uint8_t *input, std::size_t size)
{
    static SimPty pty;
    static auto *serial = new SensorLink(SensorLink::Kind::Serial, nullptr, [] { return false; });
    static auto *bridge = new SensorLink(SensorLink::Kind::Ch347);
    if (size == 0)
        return;
    vendor().listens = false;
    vendor().setDevices({{0, "usb#A&5003"}});
    if (!serial->isOpen())
        serial->open(pty.portName());
    if (!bridge->isOpen()) {
        bridge->scan();
        bridge->open(QString::number(0x5003));
    }
    fuzzCheck(serial->isOpen() && bridge->isOpen(), "both links are open");
    WorkerScript(FuzzBytes(input + 1, size - 1), input[0] % 2 == 0 ? *bridge : *serial, pty).run();
    QByteArray rest;
    serial->takeReceived(rest);
}
