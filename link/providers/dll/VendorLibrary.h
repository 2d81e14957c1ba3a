#pragma once

#include <QLibrary>
#include <QString>

/// A bridge library that is looked for when the program runs. Use: resolve() every operation, then ask isComplete().
class VendorLibrary
{
public:
    /// The plain name, without prefix, suffix or folder. On 64-bit Windows the library goes by a name of its own.
    explicit VendorLibrary(const QString &name);

    template<typename Function>
    void resolve(Function &target, const char *symbol)
    {
        target = reinterpret_cast<Function>(address(symbol));
    }

    /// True when the library is there with every operation asked for. Otherwise one line in the log says what is missing.
    bool isComplete() const;

private:
    QFunctionPointer address(const char *symbol);

    QLibrary m_library;
    QString m_name;
    QString m_missingSymbol;
};
