#include "ui/wizard/clsLogList.h"

#include "build/modBuildRecord.h"
#include "ui/kit/modClipboard.h"
#include "ui/kit/modResolution.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace vesk {

namespace {

constexpr int kLineMargin = 8; // pixels at 96 DPI behind the widest line

} // namespace

clsLogList::clsLogList(const clsBuildLog& log, std::string programPath)
    : log_(log), programPath_(std::move(programPath)) {}

void clsLogList::Attach(HWND list) {
    list_ = list;
    link_.Attach(list_, [this](UINT message, WPARAM wparam, LPARAM lparam) {
        return OnMessage(message, wparam, lparam);
    });
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
    const int width = TextWidth(list_, line) + ScalePixels(list_, kLineMargin);
    if (width <= widest_)
        return;
    widest_ = width;
    SendMessageA(list_, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(width), 0);
}

void clsLogList::ShowFirstWarning() const {
    const auto& lines = log_.Lines();
    const auto first = std::ranges::find_if(lines, IsWarningLine);
    if (first == lines.end())
        return;
    const auto line = static_cast<WPARAM>(first - lines.begin());
    SendMessageA(list_, LB_SETCARETINDEX, line, FALSE);
    SendMessageA(list_, LB_SETTOPINDEX, line > 0 ? line - 1 : line, 0);
}

POINT clsLogList::CurrentLinePosition() const {
    RECT line{};
    const auto current = static_cast<WPARAM>(SendMessageA(list_, LB_GETCARETINDEX, 0, 0));
    SendMessageA(list_, LB_GETITEMRECT, current, reinterpret_cast<LPARAM>(&line));
    POINT position{ScalePixels(list_, kLineMargin), line.bottom};
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
    // Nothing is shown when it worked; a failure is, by the box for what a handler throws.
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

/// The menu opens when the right button goes down, where the mouse then is.
std::optional<LRESULT> clsLogList::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_KEYDOWN:
        return HandleKey(wparam) ? std::optional<LRESULT>(0) : std::nullopt;
    case WM_RBUTTONDOWN: {
        POINT position{static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))};
        ClientToScreen(list_, &position);
        OpenMenu(position);
        return 0;
    }
    case WM_RBUTTONUP: // would ask for the menu a second time
        return 0;
    default:
        return std::nullopt;
    }
}

} // namespace vesk
