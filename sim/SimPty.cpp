#include "sim/SimPty.h"

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr auto kBaudRates = std::array<std::pair<speed_t, int>, 12>{{
    {B9600, 9600},
    {B19200, 19200},
    {B38400, 38400},
    {B57600, 57600},
    {B115200, 115200},
    {B230400, 230400},
    {B460800, 460800},
    {B500000, 500000},
    {B576000, 576000},
    {B921600, 921600},
    {B1000000, 1000000},
    {B2000000, 2000000},
}};

void makeRaw(int descriptor)
{
    termios settings{};
    tcgetattr(descriptor, &settings);
    cfmakeraw(&settings);
    cfsetspeed(&settings, B115200);
    tcsetattr(descriptor, TCSANOW, &settings);
}

} // namespace

SimPty::SimPty()
{
    if (openpty(&m_master, &m_slave, nullptr, nullptr, nullptr) != 0) {
        m_master = -1;
        m_slave = -1;
        return;
    }
    makeRaw(m_slave);
    fcntl(m_master, F_SETFL, O_NONBLOCK);
    fcntl(m_master, F_SETFD, FD_CLOEXEC);
    fcntl(m_slave, F_SETFD, FD_CLOEXEC);
}

SimPty::~SimPty()
{
    if (!isOpen())
        return;
    close(m_master);
    close(m_slave);
}

QString SimPty::portName() const
{
    std::array<char, 64> path{};
    if (!isOpen() || ptsname_r(m_master, path.data(), path.size()) != 0)
        return {};
    return QString::fromLocal8Bit(path.data()).mid(static_cast<int>(sizeof "/dev/") - 1);
}

int SimPty::baudRate() const
{
    termios settings{};
    if (!isOpen() || tcgetattr(m_slave, &settings) != 0)
        return 0;
    const speed_t speed = cfgetospeed(&settings);
    const auto found = std::find_if(kBaudRates.begin(), kBaudRates.end(),
                                    [speed](const auto &rate) { return rate.first == speed; });
    return found == kBaudRates.end() ? 0 : found->second;
}

QByteArray SimPty::readAll()
{
    QByteArray bytes;
    std::array<char, 4096> chunk{};
    for (;;) {
        const ssize_t count = read(m_master, chunk.data(), chunk.size());
        if (count <= 0)
            return bytes;
        bytes.append(chunk.data(), static_cast<int>(count));
    }
}

void SimPty::write(const QByteArray &bytes)
{
    const ssize_t written = ::write(m_master, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    static_cast<void>(written);
}
