#include "link/providers/dll/VendorLibrary.h"

#include <QDebug>

VendorLibrary::VendorLibrary(const QString &name)
    : m_name(name)
{
#ifdef Q_OS_WIN64
    m_library.setFileName(name + QLatin1String("A64"));
#else
    m_library.setFileName(name);
#endif
    if (!m_library.load())
        m_lack = QStringLiteral("is not installed");
}

QFunctionPointer VendorLibrary::resolve(const char *symbol)
{
    if (!m_library.isLoaded())
        return nullptr;
    const QFunctionPointer function = m_library.resolve(symbol);
    if (function == nullptr && isComplete())
        m_lack = QLatin1String("has no ") + QLatin1String(symbol);
    return function;
}

void VendorLibrary::warnWhenIncomplete() const
{
    if (!isComplete())
        qWarning("%s %s, its bridges cannot be used", qUtf8Printable(m_name), qUtf8Printable(m_lack));
}
