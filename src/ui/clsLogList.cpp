#include "ui/clsLogList.h"

#include "ui/modWindow.h"
#include "ui/resources/ids.h"

#include <commctrl.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace vesk {

namespace {

constexpr UINT_PTR kSubclassId = 1;
constexpr int kLineMargin = 8; // pixels at 96 DPI behind the widest line

using GlobalMemory = UniqueHandle<::GlobalFree, HGLOBAL>;

void PutOnClipboard(HWND owner, const std::string& text) {
    if (!OpenClipboard(owner))
        return; // another program holds it
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

} // namespace

clsLogList::clsLogList(const BuildLog& log, std::string programPath)
    : log_(log), programPath_(std::move(programPath)) {}

void clsLogList::Attach(HWND list) {
    list_ = list;
    SetWindowSubclass(list_, ListProcedure, kSubclassId, reinterpret_cast<DWORD_PTR>(this));
    constexpr WPARAM kExpectedLines = 4000;
    SendMessageA(list_, LB_INITSTORAGE, kExpectedLines, kExpectedLines * 80);
}

void clsLogList::ShowLines(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        const LRESULT added =
            SendMessageA(list_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
        if (added < 0)
            return;
        Widen(line);
        SendMessageA(list_, LB_SETCARETINDEX, static_cast<WPARAM>(added), FALSE);
    }
}

void clsLogList::Widen(const std::string& line) {
    const int width = TextWidth(list_, line) + ScalePixels(kLineMargin);
    if (width <= widest_)
        return;
    widest_ = width;
    SendMessageA(list_, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(width), 0);
}

POINT clsLogList::CurrentLinePosition() const {
    RECT line{};
    const auto current = static_cast<WPARAM>(SendMessageA(list_, LB_GETCARETINDEX, 0, 0));
    SendMessageA(list_, LB_GETITEMRECT, current, reinterpret_cast<LPARAM>(&line));
    POINT position{ScalePixels(kLineMargin), line.bottom};
    ClientToScreen(list_, &position);
    return position;
}

void clsLogList::OpenMenu(POINT position) {
    if (position.x == -1 && position.y == -1)
        position = CurrentLinePosition();
    const MenuHandle menu(CreatePopupMenu());
    AppendMenuA(menu.Get(), MF_STRING, IDM_COPY, "Copy");
    // Spelled so since the first version; guides that tell users what to click say it this way.
    AppendMenuA(menu.Get(), MF_STRING, IDM_SEL_ALL, "Sellect All");
    AppendMenuA(menu.Get(), MF_STRING, IDM_SAVE_LOG, "Save to Log");
    switch (TrackPopupMenu(menu.Get(), TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON, position.x,
                           position.y, 0, list_, nullptr)) {
    case IDM_COPY:
        return Copy();
    case IDM_SEL_ALL:
        return SelectAll();
    case IDM_SAVE_LOG:
        return SaveToLog();
    default:
        return;
    }
}

std::string clsLogList::SelectedText() const {
    std::string text;
    const auto& lines = log_.Lines();
    for (std::size_t line = 0; line < lines.size(); ++line) {
        if (SendMessageA(list_, LB_GETSEL, line, 0) > 0)
            text += lines[line] + "\r\n";
    }
    return text;
}

void clsLogList::Copy() const {
    PutOnClipboard(list_, SelectedText());
}

void clsLogList::SelectAll() const {
    SendMessageA(list_, LB_SETSEL, TRUE, -1);
}

void clsLogList::SaveToLog() const {
    SelectAll();
    SaveBuildLog(programPath_, SelectedText());
}

bool clsLogList::HandleKey(WPARAM key) const {
    if (GetKeyState(VK_CONTROL) >= 0)
        return false;
    if (key == 'C')
        Copy();
    else if (key == 'A')
        SelectAll();
    else
        return false;
    return true;
}

LRESULT CALLBACK clsLogList::ListProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                           UINT_PTR id, DWORD_PTR self) {
    if (message == WM_KEYDOWN && reinterpret_cast<const clsLogList*>(self)->HandleKey(wparam))
        return 0;
    if (message == WM_NCDESTROY)
        RemoveWindowSubclass(window, ListProcedure, id);
    return DefSubclassProc(window, message, wparam, lparam);
}

} // namespace vesk
