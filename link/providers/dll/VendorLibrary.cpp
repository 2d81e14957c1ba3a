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
    m_library.load();
}

QFunctionPointer VendorLibrary::address(const char *symbol)
{
    if (!m_library.isLoaded())
        return nullptr;
    const QFunctionPointer function = m_library.resolve(symbol);
    if (function == nullptr && m_missingSymbol.isEmpty())
        m_missingSymbol = QLatin1String(symbol);
    return function;
}

bool VendorLibrary::isComplete() const
{
    if (!m_library.isLoaded()) {
        qWarning("%s is not installed, its bridges cannot be used", qUtf8Printable(m_name));
        return false;
    }
    if (!m_missingSymbol.isEmpty()) {
        qWarning("%s has no %s, its bridges cannot be used", qUtf8Printable(m_name),
                 qUtf8Printable(m_missingSymbol));
        return false;
    }
    return true;
}
