#pragma once

#include <QString>

/// A symbolic link with a name that stays, to a port whose name changes from start to start. It goes with the
/// object.
class StableName
{
public:
    /// A link that another run has left, to a pseudo-terminal, is replaced; nothing else is. An empty path:
    /// no link.
    StableName(const QString &path, const QString &port);
    ~StableName();
    StableName(const StableName &) = delete;
    StableName &operator=(const StableName &) = delete;

    /// Why the link could not be made; empty if it was, or if none was wanted.
    QString error() const { return m_error; }

private:
    QString m_path;
    QString m_port;
    QString m_error;
};
