#pragma once

#include <QtGlobal>

/// Calling convention of the bridge libraries' operations.
#if defined(Q_OS_WIN32) && !defined(Q_OS_WIN64)
#    define TACTILE_VENDOR_CALL __stdcall
#else
#    define TACTILE_VENDOR_CALL
#endif
