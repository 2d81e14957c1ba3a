#pragma once

#include <cstdint>

/// What the operations that open a device return on failure: the all-ones pointer.
inline void *invalidHandle()
{
    return reinterpret_cast<void *>(UINTPTR_MAX);
}

inline bool isInvalidHandle(const void *handle)
{
    return reinterpret_cast<uintptr_t>(handle) == UINTPTR_MAX;
}
