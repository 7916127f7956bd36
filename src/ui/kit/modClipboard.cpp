#include "ui/kit/modClipboard.h"

#include "base/UniqueHandle.h"
#include "base/modSystemError.h"
#include "base/modWide.h"

#include <cstddef>
#include <cstring>

namespace vesk {

void PutOnClipboard(HWND owner, const std::string& text) {
    // In UTF-16, of which the system makes the other forms: bytes it would take to be in the code
    // page of the keyboard's language.
    const std::wstring wide = Widen(text);
    const std::size_t bytes = (wide.size() + 1) * sizeof(wchar_t);
    // Programs that watch the clipboard hold it for moments.
    constexpr int kAttempts = 40;
    int attempt = 0;
    while (!OpenClipboard(owner)) {
        if (++attempt == kAttempts)
            ThrowLastError("cannot copy to", "the clipboard");
        Sleep(10);
    }
    EmptyClipboard();
    GlobalMemory memory(GlobalAlloc(GMEM_MOVEABLE, bytes));
    if (memory) {
        std::memcpy(GlobalLock(memory.Get()), wide.c_str(), bytes);
        GlobalUnlock(memory.Get());
        if (SetClipboardData(CF_UNICODETEXT, memory.Get()))
            (void)memory.Release(); // the clipboard frees it
    }
    CloseClipboard();
}

} // namespace vesk
