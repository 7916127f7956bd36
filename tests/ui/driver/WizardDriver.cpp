#include "WizardDriver.h"

#include "ExpectedText.h"
#include "base/modText.h"
#include "ui/resources/ids.h"

#include <doctest/doctest.h>

#include <algorithm>

namespace vesk::test {

namespace {

/// What a window's thread does with the keyboard and menus.
GUITHREADINFO ThreadOf(HWND window) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
    return info;
}

/// Null where none matches.
HWND FirstOf(const std::vector<HWND>& windows, const std::function<bool(HWND)>& matches) {
    const auto found = std::ranges::find_if(windows, matches);
    return found == windows.end() ? nullptr : *found;
}

bool IsInTheMiddle(const RECT& outer, const RECT& inner) {
    const auto nearly = [](LONG a, LONG b) { return std::abs(a - b) <= 4; }; // twice the pixels
    return nearly(outer.left + outer.right, inner.left + inner.right) &&
           nearly(outer.top + outer.bottom, inner.top + inner.bottom);
}

bool HasIcon(HWND control) {
    return ClassOf(control) == "Static" && SendMessageA(control, STM_GETICON, 0, 0) != 0;
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

void EndProgram(HANDLE process) {
    TerminateProcess(process, 99);
    WaitForSingleObject(process, 5000);
    CloseHandle(process);
}

WizardDriver::WizardDriver(const std::string& program, const std::string& arguments,
                           const std::string& title)
    : folder_(ParentOf(ParentOf(program))) {
    SetCursorPos(0, 0); // where an earlier test left it a list would show a tip
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
    window_ = AwaitTopWindow(kDialogClass, title, false);
}

void WizardDriver::Await(const std::string& what, const std::function<bool()>& condition) const {
    static DWORD patience = 30000; // milliseconds
    bool holds = false;
    WaitUntil([&] { return (holds = condition()) || HasEnded(); }, patience);
    if (holds || condition())
        return;
    // Where one wait was in vain the next ones seldom do better, and the tests have a limit too.
    patience = HasEnded() ? patience : 3000;
    FAIL("waited in vain for: ", what, "\n", Seen());
}

std::string WizardDriver::Seen() const {
    if (HasEnded())
        return "The program has ended, with " + std::to_string(AwaitEnd()) + ".";
    std::string text = "What it shows:";
    for (const HWND window : TopWindowsOf(processId_))
        text += "\n" + ContentsOf(window);
    return text;
}

std::vector<HWND> WizardDriver::TabOrder() const {
    std::vector<HWND> order;
    for (HWND control = Focus(); std::ranges::find(order, control) == order.end();
         control = Focus()) {
        order.push_back(control);
        Press(VK_TAB);
        AWAIT(*this, Focus() != control && Focus() != nullptr);
    }
    return order;
}

void WizardDriver::CheckShows(HWND dialog, const std::string& name) const {
    const std::string wanted = ExpectedText("windows/" + name);
    if (const HWND owner = GetWindow(dialog, GW_OWNER))
        CHECK(IsInTheMiddle(AreaOf(owner), AreaOf(dialog)));
    std::string shown;
    for (int attempt = 0; attempt < 2 && shown != wanted; ++attempt) {
        const std::vector<HWND> tabs = TabOrder(); // it changes with what is enabled later
        WaitUntil(
            [&] {
                shown = ReplaceAll(ContentsOf(dialog, tabs), folder_, "{FOLDER}");
                return shown == wanted || HasEnded();
            },
            10000);
    }
    CheckExpected("windows/" + name, shown);
}

HWND WizardDriver::AwaitTopWindow(const std::string& type, const std::string& titleStart,
                                  bool mayBeOwned) const {
    HWND found = nullptr;
    Await("a window \"" + titleStart + "\" of the class " + type, [&] {
        found = FirstOf(TopWindowsOf(processId_), [&](HWND window) {
            return window != window_ && (mayBeOwned || !GetWindow(window, GW_OWNER)) &&
                   ClassOf(window) == type && TextOf(window).starts_with(titleStart);
        });
        return found != nullptr;
    });
    return found;
}

HWND WizardDriver::AwaitDialog(const std::string& titleStart) const {
    return AwaitTopWindow(kDialogClass, titleStart, true);
}

void WizardDriver::Answer(HWND dialog, int button) const {
    const HWND control = GetDlgItem(dialog, button);
    AWAIT(*this, IsWindowVisible(control) && IsWindowEnabled(control));
    PostMessageA(control, BM_CLICK, 0, 0);
    WaitUntil([&] { return !IsWindowVisible(dialog); }); // it may be the program's last window
    CHECK_FALSE(IsWindowVisible(dialog));
}

std::string WizardDriver::AnswerBox(const std::string& title, int button) const {
    const HWND box = AwaitDialog(title);
    std::string text = TextIn(box, 0xFFFF);
    CHECK_MESSAGE(FirstOf(ControlsOf(box), HasIcon), text);
    Answer(box, button);
    return text;
}

void WizardDriver::TypeInto(HWND dialog, const std::string& text) {
    const HWND field = FirstOf(ControlsOf(dialog), [](HWND window) {
        return ClassOf(window) == "Edit" && IsWindowVisible(window);
    });
    REQUIRE(field);
    SendMessageA(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

HWND WizardDriver::Control(int id) const {
    return FirstOf(ControlsOf(window_), [&](HWND window) { return GetDlgCtrlID(window) == id; });
}

std::string WizardDriver::Text(int id) const {
    return ShownTextOf(Control(id));
}

void WizardDriver::SetText(int id, const std::string& text) const {
    SendMessageA(Control(id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void WizardDriver::Click(int id) const {
    Await("button " + std::to_string(id), [&] { return IsEnabled(id) && IsShown(id); });
    PostMessageA(Control(id), BM_CLICK, 0, 0);
}

std::string WizardDriver::Heading() const {
    return Text(IsShown(IDC_LBL_HEADING) ? IDC_LBL_HEADING : IDC_LBL_HEADING_SM);
}

void WizardDriver::GoTo(int button, const std::string& heading) const {
    Click(button);
    Await("the page \"" + heading + "\"", [&] { return Heading() == heading; });
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
    AWAIT(*this, SendMessageA(window, LVM_GETHOVERTIME, 0, 0) == mark);
}

void WizardDriver::ChangeDpi(HWND dialog, int dpi, const RECT& place) const {
    constexpr UINT kDpiChanged = 0x02E0;
    void* const there =
        VirtualAllocEx(process_.Get(), nullptr, sizeof place, MEM_COMMIT, PAGE_READWRITE);
    REQUIRE_MESSAGE(there, Seen());
    WriteProcessMemory(process_.Get(), there, &place, sizeof place, nullptr);
    SendMessageA(dialog, kDpiChanged, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(there));
    VirtualFreeEx(process_.Get(), there, 0, MEM_RELEASE);
}

void DoubleClickLine(HWND list, int line, int left) {
    const LONG down = line * HIWORD(SendMessageA(list, LVM_GETITEMSPACING, TRUE, 0));
    const LPARAM at = MAKELPARAM(left, FirstLineOf(list).y + down);
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
        PostMessageA(list, message, MK_LBUTTON, at);
}

std::string WizardDriver::AwaitTip(HWND control) const {
    SetForegroundWindow(window_);
    const POINT at = FirstLineOf(control);
    for (const LONG x : {at.x - 4, at.x}) // it has to move
        SetCursorPos(AreaOf(control).left + x, AreaOf(control).top + at.y);
    return TextOf(AwaitTopWindow(TOOLTIPS_CLASSA, "", true));
}

void WizardDriver::AwaitClipboard(const std::string& wanted) const {
    Await("the clipboard to hold " + wanted, [&] {
        if (!OpenClipboard(nullptr))
            return false; // the program still has it
        const HANDLE data = GetClipboardData(CF_TEXT);
        const std::string text = data ? static_cast<const char*>(GlobalLock(data)) : "none";
        CloseClipboard();
        return text == wanted;
    });
}

std::vector<std::string> WizardDriver::LogLines() const {
    return LinesOf(Control(IDC_LST_PROGRESS));
}

void WizardDriver::Type(int id, const std::wstring& text) const {
    SendMessageW(Control(id), EM_SETSEL, 0, -1);
    SendMessageW(Control(id), WM_CLEAR, 0, 0);
    for (const wchar_t c : text)
        SendMessageW(Control(id), WM_CHAR, c, 1);
}

HWND WizardDriver::Focus() const {
    return ThreadOf(window_).hwndFocus;
}

void WizardDriver::FocusOn(int id) const {
    PostMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(id)), TRUE);
    Await("the keyboard in " + std::to_string(id), [&] { return Focus() == Control(id); });
}

void WizardDriver::PressOnKeyboard(BYTE key, bool withControl) const {
    const HWND root = GetAncestor(Focus(), GA_ROOT);
    SetForegroundWindow(root);
    AWAIT(*this, GetForegroundWindow() == root);
    if (withControl)
        keybd_event(VK_CONTROL, 0, 0, 0);
    keybd_event(key, 0, 0, 0);
    keybd_event(key, 0, KEYEVENTF_KEYUP, 0);
    if (withControl)
        keybd_event(VK_CONTROL, 0, KEYEVENTF_KEYUP, 0);
}

int WizardDriver::Chosen(int combo) const {
    return static_cast<int>(SendMessageA(Control(combo), CB_GETCURSEL, 0, 0));
}

std::vector<std::string> WizardDriver::Items(int combo) const {
    return LinesOf(Control(combo));
}

void WizardDriver::Choose(int combo, int item) const {
    SendMessageA(Control(combo), WM_KEYDOWN, VK_HOME, 1);
    for (int i = 0; i < item; ++i)
        SendMessageA(Control(combo), WM_KEYDOWN, VK_DOWN, 1);
    CAPTURE(combo);
    REQUIRE(Chosen(combo) == item);
}

void WizardDriver::PickFromLogMenu(int entry) const {
    const HWND list = Control(IDC_LST_PROGRESS);
    const bool byMouse = entry == 3;
    PostMessageA(list, byMouse ? WM_RBUTTONDOWN : WM_CONTEXTMENU,
                 byMouse ? MK_RBUTTON : reinterpret_cast<WPARAM>(list),
                 byMouse ? MAKELPARAM(70, 50) : -1);
    const HWND menu = AwaitTopWindow("#32768", "", true);
    RECT place = AreaOf(list);
    place.top += 8; // the menu is below a line, the last one perhaps
    place.bottom += 20;
    CHECK(PtInRect(&place, {AreaOf(menu).left, AreaOf(menu).top}));
    // It is shown before it takes keys.
    AWAIT(*this, (ThreadOf(list).flags & GUI_INMENUMODE) != 0);
    for (int i = 0; i < entry; ++i)
        PostMessageA(menu, WM_KEYDOWN, VK_DOWN, 0);
    // As the character, which the key is not while Control still counts as held.
    PostMessageA(menu, WM_CHAR, '\r', 0);
    AWAIT(*this, !IsWindowVisible(menu));
}

DWORD WizardDriver::AwaitEnd() const {
    if (!WaitUntil([&] { return HasEnded(); }))
        FAIL("the program goes on\n", Seen());
    DWORD code = 0;
    GetExitCodeProcess(process_.Get(), &code);
    return code;
}

bool WizardDriver::HasEnded() const {
    return WaitForSingleObject(process_.Get(), 0) == WAIT_OBJECT_0;
}

} // namespace vesk::test
