#pragma once

#include "link/providers/invalid_handle.h"
#include "link/providers/vendor_call.h"

#include <QLibrary>
#include <QString>

#include <type_traits>

/// A bridge library that is looked for when the program runs. It is used whole or not at all: the one of a
/// family is a class of its own, with a VendorOperation for each operation, that calls warnWhenIncomplete()
/// once it has them all.
class VendorLibrary
{
public:
    /// The plain name, without prefix, suffix or folder. On 64-bit Windows the library goes by a name of its
    /// own.
    explicit VendorLibrary(const QString &name);

    /// Null when there is no such operation, which makes the library incomplete.
    QFunctionPointer resolve(const char *symbol);
    bool isComplete() const { return m_lack.isEmpty(); }

protected:
    /// One line in the log about the first thing that is missing.
    void warnWhenIncomplete() const;

private:
    QLibrary m_library;
    QString m_name;
    QString m_lack;
};

/// An operation of a library, called like a function; one of an incomplete library does nothing and fails.
template<typename Function>
class VendorOperation;

template<typename Result, typename... Arguments>
class VendorOperation<Result(TACTILE_VENDOR_CALL *)(Arguments...)>
{
public:
    VendorOperation(VendorLibrary &library, const char *symbol)
        : m_library(library)
        , m_function(reinterpret_cast<Function>(library.resolve(symbol)))
    {}

    Result operator()(Arguments... arguments) const
    {
        if (m_library.isComplete())
            return m_function(arguments...);
        if constexpr (std::is_same_v<Result, void *>)
            return invalidHandle();
        else
            return Result();
    }

private:
    using Function = Result(TACTILE_VENDOR_CALL *)(Arguments...);

    const VendorLibrary &m_library;
    Function m_function;
};
