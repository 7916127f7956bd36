#include "ui/kit/modClipboard.h"

#include "base/UniqueHandle.h"
#include "base/modSystemError.h"

#include <cstring>

namespace vesk {

void PutOnClipboard(HWND owner, const std::string& text) {
    // Programs that watch the clipboard hold it for moments.
    constexpr int kAttempts = 40;
    int attempt = 0;
    while (!OpenClipboard(owner)) {
        if (++attempt == kAttempts)
            ThrowLastError("cannot copy to", "the clipboard");
        Sleep(10);
    }
    EmptyClipboard();
    GlobalMemory memory(GlobalAlloc(GMEM_MOVEABLE, text.size() + 1));
    if (memory) {
        std::memcpy(GlobalLock(memory.Get()), text.c_str(), text.size() + 1);
        GlobalUnlock(memory.Get());
        if (SetClipboardData(CF_TEXT, memory.Get()))
            (void)memory.Release(); // the clipboard frees it
    }
    CloseClipboard();
}

} // namespace vesk
