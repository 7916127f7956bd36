#include "WizardDriver.h"

#include "ui/resources/ids.h"

#include <commctrl.h>

#include <doctest/doctest.h>

namespace vesk::test {

namespace {

std::string TextOf(HWND window) {
    std::string text(4096, '\0');
    text.resize(static_cast<std::size_t>(
        SendMessageA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

std::string ShownTextOf(HWND control) {
    return IsWindowVisible(control) ? TextOf(control) : "(not shown)";
}

std::string ClassOf(HWND window) {
    std::string name(64, '\0');
    name.resize(static_cast<std::size_t>(
        GetClassNameA(window, name.data(), static_cast<int>(name.size()))));
    return name;
}

/// Calls back for each window that an enumeration finds, until one matches.
struct Search {
    const std::function<bool(HWND)>& matches;
    HWND found = nullptr;

    static BOOL CALLBACK Visit(HWND window, LPARAM search) {
        auto& self = *reinterpret_cast<Search*>(search);
        if (!self.matches(window))
            return TRUE;
        self.found = window;
        return FALSE;
    }
};

/// The messages that ask a list for its lines.
struct LineMessages {
    UINT count;
    UINT length;
    UINT text;
};

std::vector<std::string> Lines(HWND list, const LineMessages& messages) {
    const auto count = static_cast<WPARAM>(SendMessageW(list, messages.count, 0, 0));
    std::vector<std::string> lines;
    for (WPARAM line = 0; line < count; ++line) {
        // Across processes only the wide form is converted right.
        std::wstring text(
            static_cast<std::size_t>(SendMessageW(list, messages.length, line, 0)) + 1, L'\0');
        SendMessageW(list, messages.text, line, reinterpret_cast<LPARAM>(text.data()));
        text.pop_back();
        lines.emplace_back();
        for (const wchar_t c : text)
            lines.back() += static_cast<char>(c);
    }
    return lines;
}

} // namespace

bool WaitUntil(const std::function<bool()>& condition, DWORD milliseconds) {
    const DWORD start = GetTickCount();
    while (!condition()) {
        if (GetTickCount() - start > milliseconds)
            return false;
        Sleep(5);
    }
    return true;
}

std::string TextIn(HWND dialog, int id) {
    return ShownTextOf(GetDlgItem(dialog, id));
}

WizardDriver::WizardDriver(const std::string& program, const std::string& arguments,
                           const std::string& title) {
    std::string commandLine = "\"" + program + "\" " + arguments;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    REQUIRE(CreateProcessA(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                           nullptr, &startup, &started));
    CloseHandle(started.hThread);
    process_.Reset(started.hProcess);
    processId_ = started.dwProcessId;
    // What it asks at its start has the same title, and the window as its owner.
    REQUIRE(WaitUntil([&] {
        window_ = FindTopWindow([&](HWND window) {
            return !GetWindow(window, GW_OWNER) && ClassOf(window) == "#32770" &&
                   TextOf(window).starts_with(title);
        });
        return window_ != nullptr || HasEnded();
    }));
    REQUIRE(window_);
}

WizardDriver::~WizardDriver() {
    if (HasEnded())
        return;
    TerminateProcess(process_.Get(), 99);
    WaitForSingleObject(process_.Get(), 5000);
}

HWND WizardDriver::FindTopWindow(const std::function<bool(HWND)>& matches) const {
    const std::function<bool(HWND)> own = [&](HWND window) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        return process == processId_ && IsWindowVisible(window) && matches(window);
    };
    Search search{own};
    EnumWindows(Search::Visit, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

HWND WizardDriver::AwaitDialog(const std::string& titleStart) const {
    HWND found = nullptr;
    const bool appeared = WaitUntil([&] {
        found = FindTopWindow([&](HWND window) {
            return window != window_ && ClassOf(window) == "#32770" &&
                   TextOf(window).starts_with(titleStart);
        });
        return found != nullptr || HasEnded();
    });
    CAPTURE(titleStart);
    REQUIRE(appeared);
    REQUIRE(found);
    return found;
}

void WizardDriver::Answer(HWND dialog, int button) {
    const HWND control = GetDlgItem(dialog, button);
    REQUIRE(control);
    REQUIRE(WaitUntil([&] { return IsWindowVisible(control) && IsWindowEnabled(control); }, 5000));
    PostMessageA(control, BM_CLICK, 0, 0);
    REQUIRE(WaitUntil([&] { return !IsWindow(dialog) || !IsWindowVisible(dialog); }));
}

void WizardDriver::TypeInto(HWND dialog, const std::string& text) {
    const std::function<bool(HWND)> isField = [](HWND window) {
        return ClassOf(window) == "Edit" && IsWindowVisible(window);
    };
    Search search{isField};
    EnumChildWindows(dialog, Search::Visit, reinterpret_cast<LPARAM>(&search));
    REQUIRE(search.found);
    SendMessageA(search.found, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

std::string WizardDriver::BoxText(HWND box) {
    return ShownTextOf(GetDlgItem(box, 0xFFFF));
}

HWND WizardDriver::Control(int id) const {
    const std::function<bool(HWND)> matches = [&](HWND window) {
        return GetDlgCtrlID(window) == id;
    };
    Search search{matches};
    EnumChildWindows(window_, Search::Visit, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

std::string WizardDriver::Text(int id) const {
    return ShownTextOf(Control(id));
}

void WizardDriver::SetText(int id, const std::string& text) const {
    SendMessageA(Control(id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void WizardDriver::Click(int id) const {
    CAPTURE(id);
    REQUIRE(WaitUntil([&] { return IsEnabled(id) && IsShown(id); }));
    PostMessageA(Control(id), BM_CLICK, 0, 0);
}

std::string WizardDriver::Heading() const {
    return Text(IsShown(IDC_LBL_HEADING) ? IDC_LBL_HEADING : IDC_LBL_HEADING_SM);
}

void WizardDriver::GoTo(int button, const std::string& heading) const {
    Click(button);
    const bool reached = WaitUntil([&] { return Heading() == heading; }, 5000);
    CAPTURE(heading);
    CAPTURE(Heading());
    REQUIRE(reached);
}

bool WizardDriver::IsTicked(int list, int line) const {
    const LRESULT state = SendMessageA(Control(list), LVM_GETITEMSTATE, static_cast<WPARAM>(line),
                                       LVIS_STATEIMAGEMASK);
    return state >> 12 == 2;
}

void WizardDriver::PressSpaceOn(int list, int line) const {
    const HWND window = Control(list);
    PostMessageA(window, WM_KEYDOWN, VK_HOME, 0);
    for (int i = 0; i < line; ++i)
        PostMessageA(window, WM_KEYDOWN, VK_DOWN, 0);
    PostMessageA(window, WM_KEYDOWN, VK_SPACE, 0);
    PostMessageA(window, WM_KEYUP, VK_SPACE, 0);
    // A sent message would overtake the posted ones. What is posted keeps its order, so when this
    // harmless setting has arrived, so have the keys.
    static LPARAM mark = 1000;
    ++mark;
    PostMessageA(window, LVM_SETHOVERTIME, 0, mark);
    WaitUntil([&] { return SendMessageA(window, LVM_GETHOVERTIME, 0, 0) == mark; });
}

std::string WizardDriver::CellText(HWND list, int line, int column) const {
    // The list reads and writes in its own process only.
    constexpr int kLength = 400;
    void* const there = VirtualAllocEx(process_.Get(), nullptr, sizeof(LVITEMA) + kLength,
                                       MEM_COMMIT, PAGE_READWRITE);
    REQUIRE(there);
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = static_cast<char*>(there) + sizeof item;
    item.cchTextMax = kLength;
    WriteProcessMemory(process_.Get(), there, &item, sizeof item, nullptr);
    SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(line),
                 reinterpret_cast<LPARAM>(there));
    std::string text(kLength, '\0');
    ReadProcessMemory(process_.Get(), item.pszText, text.data(), kLength, nullptr);
    VirtualFreeEx(process_.Get(), there, 0, MEM_RELEASE);
    return text.substr(0, text.find('\0'));
}

void WizardDriver::ChangeDpi(HWND dialog, int dpi, const RECT& place) const {
    constexpr UINT kDpiChanged = 0x02E0;
    void* const there =
        VirtualAllocEx(process_.Get(), nullptr, sizeof place, MEM_COMMIT, PAGE_READWRITE);
    REQUIRE(there);
    WriteProcessMemory(process_.Get(), there, &place, sizeof place, nullptr);
    SendMessageA(dialog, kDpiChanged, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(there));
    VirtualFreeEx(process_.Get(), there, 0, MEM_RELEASE);
}

std::string WizardDriver::AwaitTip() const {
    HWND tip = nullptr;
    REQUIRE(WaitUntil([&] {
        tip = FindTopWindow([](HWND window) { return ClassOf(window) == "tooltips_class32"; });
        return tip != nullptr;
    }));
    return TextOf(tip);
}

std::vector<std::string> WizardDriver::LogLines() const {
    return Lines(Control(IDC_LST_PROGRESS), {LB_GETCOUNT, LB_GETTEXTLEN, LB_GETTEXT});
}

void WizardDriver::Type(int id, const std::string& text) const {
    SendMessageA(Control(id), EM_SETSEL, 0, -1);
    SendMessageA(Control(id), WM_CLEAR, 0, 0);
    for (const char c : text)
        SendMessageA(Control(id), WM_CHAR, static_cast<WPARAM>(c), 1);
}

int WizardDriver::Chosen(int combo) const {
    return static_cast<int>(SendMessageA(Control(combo), CB_GETCURSEL, 0, 0));
}

std::vector<std::string> WizardDriver::Items(int combo) const {
    return Lines(Control(combo), {CB_GETCOUNT, CB_GETLBTEXTLEN, CB_GETLBTEXT});
}

void WizardDriver::Choose(int combo, int item) const {
    SendMessageA(Control(combo), WM_KEYDOWN, VK_HOME, 1);
    for (int i = 0; i < item; ++i)
        SendMessageA(Control(combo), WM_KEYDOWN, VK_DOWN, 1);
    CAPTURE(combo);
    REQUIRE(Chosen(combo) == item);
}

void WizardDriver::CheckTabOrder(const std::vector<int>& ids) const {
    const auto focus = [this] {
        GUITHREADINFO info{};
        info.cbSize = sizeof info;
        GetGUIThreadInfo(GetWindowThreadProcessId(window_, nullptr), &info);
        return info.hwndFocus;
    };
    for (const int id : ids) {
        CAPTURE(id);
        REQUIRE(WaitUntil([&] { return focus() == Control(id); }, 5000));
        PostMessageA(focus(), WM_KEYDOWN, VK_TAB, 0);
    }
}

void WizardDriver::PickFromLogMenu(int entry) const {
    PostMessageA(Control(IDC_LST_PROGRESS), WM_CONTEXTMENU,
                 reinterpret_cast<WPARAM>(Control(IDC_LST_PROGRESS)), -1);
    HWND menu = nullptr;
    const std::function<bool(HWND)> isMenu = [](HWND window) {
        return ClassOf(window) == "#32768";
    };
    REQUIRE(WaitUntil([&] {
        menu = FindTopWindow(isMenu);
        return menu != nullptr;
    }));
    for (int i = 0; i < entry; ++i)
        PostMessageA(menu, WM_KEYDOWN, VK_DOWN, 0);
    PostMessageA(menu, WM_KEYDOWN, VK_RETURN, 0);
    REQUIRE(WaitUntil([&] { return FindTopWindow(isMenu) == nullptr; }));
}

DWORD WizardDriver::AwaitEnd() const {
    REQUIRE(WaitForSingleObject(process_.Get(), 30000) == WAIT_OBJECT_0);
    DWORD code = 0;
    GetExitCodeProcess(process_.Get(), &code);
    return code;
}

bool WizardDriver::HasEnded() const {
    return WaitForSingleObject(process_.Get(), 0) == WAIT_OBJECT_0;
}

} // namespace vesk::test
