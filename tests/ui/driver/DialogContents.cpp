#include "DialogContents.h"

#include "base/UniqueHandle.h"
#include "base/Version.h"
#include "base/modText.h"
#include "base/modWide.h"

#include <commctrl.h>

#include <algorithm>

namespace vesk::test {

namespace {

BOOL CALLBACK AddTo(HWND window, LPARAM list) {
    reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    return TRUE;
}

bool IsFrame(HWND control) {
    return ClassOf(control) == "Button" &&
           (GetWindowLongA(control, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
}

/// True for a control that reaches out of its parent, or over another one that is shown.
bool IsMisplaced(HWND control, const std::vector<HWND>& controls) {
    const RECT area = AreaOf(control);
    const bool isOver = std::ranges::any_of(controls, [&](HWND other) {
        const RECT place = AreaOf(other);
        RECT common{};
        return other != control && GetParent(other) == GetParent(control) &&
               IsWindowVisible(other) && !IsFrame(other) && IntersectRect(&common, &place, &area);
    });
    return (isOver && !IsFrame(control)) || !IsIn(AreaOf(GetParent(control)), area);
}

std::string ChoicesOf(HWND combo) {
    std::string text;
    int number = 0;
    for (const std::string& item : LinesOf(combo)) {
        const bool chosen = SendMessageA(combo, CB_GETCURSEL, 0, 0) == number++;
        text += (chosen ? "\n    > " : "\n      ") + item;
    }
    return text;
}

std::string LinesOfList(HWND list) {
    auto* const header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
    const auto columns = static_cast<int>(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0));
    const auto count = static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0));
    const bool hasTicks = SendMessageA(list, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0) & 4;
    std::string text;
    for (int line = 0; line < count; ++line) {
        text += std::string("\n    ") + (!hasTicks ? "" : IsTicked(list, line) ? "[x] " : "[ ] ");
        for (int column = 0; column < columns; ++column)
            text += (column == 0 ? "" : " | ") + CellText(list, line, column);
    }
    return text;
}

} // namespace

std::string ClassOf(HWND window) {
    std::string name(64, '\0');
    name.resize(static_cast<std::size_t>(
        GetClassNameA(window, name.data(), static_cast<int>(name.size()))));
    return name;
}

std::string TextOf(HWND window) {
    std::string text(4096, '\0');
    text.resize(static_cast<std::size_t>(
        SendMessageA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

std::string ShownTextOf(HWND control) {
    return IsWindowVisible(control) ? TextOf(control) : "(not shown)";
}

std::vector<HWND> TopWindowsOf(DWORD process) {
    std::vector<HWND> windows;
    EnumWindows(AddTo, reinterpret_cast<LPARAM>(&windows));
    std::erase_if(windows, [&](HWND window) {
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        return owner != process || !IsWindowVisible(window);
    });
    return windows;
}

std::vector<HWND> ControlsOf(HWND dialog) {
    std::vector<HWND> controls;
    if (IsWindow(dialog)) // without one, all windows of the screen would be listed
        EnumChildWindows(dialog, AddTo, reinterpret_cast<LPARAM>(&controls));
    return controls;
}

std::vector<std::string> LinesOf(HWND list) {
    const bool isCombo = ClassOf(list) == "ComboBox";
    const LRESULT count = SendMessageW(list, isCombo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0);
    std::vector<std::string> lines;
    for (LRESULT i = 0; i < count; ++i) {
        // Across processes only the wide form is converted right.
        const auto line = static_cast<WPARAM>(i);
        const LRESULT length = std::max<LRESULT>(
            SendMessageW(list, isCombo ? CB_GETLBTEXTLEN : LB_GETTEXTLEN, line, 0), 0);
        std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
        SendMessageW(list, isCombo ? CB_GETLBTEXT : LB_GETTEXT, line,
                     reinterpret_cast<LPARAM>(text.data()));
        text.pop_back();
        lines.push_back(Narrowed(text));
    }
    return lines;
}

std::string ContentsOf(HWND dialog, const std::vector<HWND>& tabs) {
    std::string text = TextOf(dialog) + "\n";
    const std::vector<HWND> controls = ControlsOf(dialog);
    for (const HWND control : controls) {
        const std::string type = ClassOf(control);
        const std::string own = TextOf(control);
        if (!IsWindowVisible(control) || ClassOf(GetParent(control)) != kDialogClass ||
            type == kDialogClass || (type == "Static" && own.empty()))
            continue;
        const auto place = std::ranges::find(tabs, control);
        text += place == tabs.end() ? "  " : std::to_string(place - tabs.begin() + 1) + " ";
        text += type + (IsMisplaced(control, controls) ? ", misplaced" : "") +
                (IsWindowEnabled(control) ? "" : ", disabled") +
                (SendMessageA(control, BM_GETCHECK, 0, 0) == BST_CHECKED ? ", ticked" : "");
        if (type == "ComboBox")
            text += ChoicesOf(control);
        else if (type == WC_LISTVIEWA)
            text += LinesOfList(control);
        else
            text += ": " + ReplaceAll(own, "\r\n", "\n    ");
        text += "\n";
    }
    return ReplaceAll(text, kVersionText, "{VERSION}");
}

bool IsTicked(HWND list, int line) {
    const LRESULT state =
        SendMessageA(list, LVM_GETITEMSTATE, static_cast<WPARAM>(line), LVIS_STATEIMAGEMASK);
    return state >> 12 == 2;
}

std::string CellText(HWND list, int line, int column) {
    constexpr int kLength = 400;
    DWORD id = 0;
    GetWindowThreadProcessId(list, &id);
    const UniqueHandle<::CloseHandle, HANDLE> process(
        OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, id));
    // The list reads and writes in its own process only.
    void* const there = VirtualAllocEx(process.Get(), nullptr, sizeof(LVITEMA) + kLength,
                                       MEM_COMMIT, PAGE_READWRITE);
    if (!there)
        return "(not to be read)";
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = static_cast<char*>(there) + sizeof item;
    item.cchTextMax = kLength;
    WriteProcessMemory(process.Get(), there, &item, sizeof item, nullptr);
    SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(line),
                 reinterpret_cast<LPARAM>(there));
    std::string text(kLength, '\0');
    ReadProcessMemory(process.Get(), item.pszText, text.data(), kLength, nullptr);
    VirtualFreeEx(process.Get(), there, 0, MEM_RELEASE);
    return text.substr(0, text.find('\0'));
}

POINT FirstLineOf(HWND control) {
    auto* const header = reinterpret_cast<HWND>(SendMessageA(control, LVM_GETHEADER, 0, 0));
    return {60, SizeOf(header).cy + 10};
}

} // namespace vesk::test
