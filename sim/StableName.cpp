#include "sim/StableName.h"

#include <QFile>

#include <filesystem>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

namespace {

fs::path toPath(const QString &name)
{
    return QFile::encodeName(name).toStdString();
}

/// Where the link points to; empty for what is no link.
std::string target(const fs::path &path)
{
    std::error_code error;
    return fs::read_symlink(path, error).string();
}

} // namespace

StableName::StableName(const QString &path, const QString &port)
    : m_path(path)
    , m_port(port)
{
    if (m_path.isEmpty())
        return;
    std::error_code error;
    if (target(toPath(m_path)).rfind("/dev/pts/", 0) == 0)
        fs::remove(toPath(m_path), error);
    fs::create_symlink(toPath(m_port), toPath(m_path), error);
    if (error)
        m_error = QString::fromLocal8Bit(error.message().c_str());
}

StableName::~StableName()
{
    // By now the name may stand for the port of another run.
    std::error_code error;
    if (!m_path.isEmpty() && target(toPath(m_path)) == m_port.toStdString())
        fs::remove(toPath(m_path), error);
}
