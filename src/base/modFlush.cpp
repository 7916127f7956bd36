#include "base/modFlush.h"

#include <windows.h>

namespace vesk {

bool FlushToDisk(void* file) {
    if (FlushFileBuffers(file) != FALSE)
        return true;
    const DWORD error = GetLastError();
    return error == ERROR_INVALID_FUNCTION || error == ERROR_NOT_SUPPORTED;
}

} // namespace vesk
