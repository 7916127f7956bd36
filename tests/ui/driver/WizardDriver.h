#pragma once

#include "DialogContents.h"
#include "base/UniqueHandle.h"

#include <windows.h>

#include <commctrl.h>

#include <functional>
#include <string>
#include <vector>

namespace vesk::test {

/// Polls until the condition holds. @return false when it does not within the time
bool WaitUntil(const std::function<bool()>& condition, DWORD milliseconds = 30000);

/// Clicks twice on a line of a list view that is in sight; does not wait for what that does.
/// @param left pixels from the list's edge
void DoubleClickLine(HWND list, int line, int left = 60);

/// Puts a text into a field of a dialog.
inline void TypeIn(HWND dialog, int field, const std::string& text) {
    SendDlgItemMessageA(dialog, field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

/// Clicks a button of a dialog; does not wait for what it does.
inline void ClickIn(HWND dialog, int button) {
    PostMessageA(GetDlgItem(dialog, button), BM_CLICK, 0, 0);
}

/// Ends a program that still runs, and closes its handle.
void EndProgram(HANDLE process);

/// Waits for something that a driven program is to do; where it does not come, the test fails with
/// this condition and with what the program shows.
#define AWAIT(driver, ...) (driver).Await(#__VA_ARGS__, [&] { return __VA_ARGS__; })

/// The wizard or the catalogue editor as another process, worked through its windows: they are
/// found by class, number and title, never by their place on the screen. Every wait ends, and fails
/// the test, when the program has ended.
class WizardDriver {
public:
    /// Starts a program and waits for its main window.
    explicit WizardDriver(const std::string& program, const std::string& arguments = "",
                          const std::string& title = "Vesk Builder");
    WizardDriver(const WizardDriver&) = delete;
    WizardDriver& operator=(const WizardDriver&) = delete;
    ~WizardDriver() = default;

    [[nodiscard]] HWND Window() const { return window_; }

    /// Waits until a condition holds. @param what in words, for a failure; see AWAIT
    void Await(const std::string& what, const std::function<bool()>& condition) const;

    /// Compares what a dialog shows with tests/data/windows/NAME.txt, once it has come to that: a
    /// line for each control with its place in the Tab order, its text or lines, and whether it is
    /// disabled. The folder that the program's folder is in stands as {FOLDER} in the file.
    void CheckShows(HWND dialog, const std::string& name) const;
    void CheckShows(const std::string& name) const { CheckShows(window_, name); }

    /// A control of the main window or of one of its pages.
    [[nodiscard]] HWND Control(int id) const;

    /// The text of a control that is shown; what no user can read is "(not shown)".
    [[nodiscard]] std::string Text(int id) const;
    [[nodiscard]] bool IsShown(int id) const { return IsWindowVisible(Control(id)) != FALSE; }
    [[nodiscard]] bool IsEnabled(int id) const { return IsWindowEnabled(Control(id)) != FALSE; }
    void SetText(int id, const std::string& text) const;

    /// Types over a text field, key by key.
    void Type(int id, const std::wstring& text) const;

    /// The control with the keyboard; giving it to one; pressing a key there.
    [[nodiscard]] HWND Focus() const;
    void FocusOn(int id) const;
    void Press(WPARAM key) const { PostMessageA(Focus(), WM_KEYDOWN, key, 1); }

    /// Presses a key as the keyboard does, together with Ctrl if wanted.
    void PressOnKeyboard(BYTE key, bool withControl = false) const;
    void PressWithControl(BYTE key) const { PressOnKeyboard(key, true); }

    /// Number of a combo box's selected item, -1 for none; its items; choosing one by keys.
    [[nodiscard]] int Chosen(int combo) const;
    [[nodiscard]] std::vector<std::string> Items(int combo) const;
    void Choose(int combo, int item) const;

    /// Clicks a button as soon as it is enabled; does not wait for what it does.
    void Click(int id) const;

    /// Clicks a button and waits for the heading of the page it leads to.
    void GoTo(int button, const std::string& heading) const;

    /// The heading that is shown.
    [[nodiscard]] std::string Heading() const;

    /// Waits for a dialog or message box of the program, other than the main window, whose title
    /// begins so.
    [[nodiscard]] HWND AwaitDialog(const std::string& titleStart) const;

    /// Presses an enabled button of a dialog or message box and waits for it to go.
    void Answer(HWND dialog, int button) const;

    /// Waits for a message box and answers it. @return what it says
    std::string AnswerBox(const std::string& title, int button) const;

    /// Clicks a button and answers the message box that it brings. @return what the box says
    std::string ClickAndAnswer(int id, const std::string& title, int button) const {
        Click(id);
        return AnswerBox(title, button);
    }

    /// Puts a text into the edit field of one of the system's dialogs.
    static void TypeInto(HWND dialog, const std::string& text);

    /// Presses the space bar on a line of a list view.
    void PressSpaceOn(int list, int line) const;

    /// Tells a dialog of the program that it is on a monitor of this resolution now, and the place
    /// that it should take there.
    void ChangeDpi(HWND dialog, int dpi, const RECT& place) const;

    /// Takes the mouse to a button or a list's first line, and waits for the tip. @return its text
    [[nodiscard]] std::string AwaitTip(HWND control) const;

    /// Waits until the clipboard holds a text.
    void AwaitClipboard(const std::string& wanted) const;

    [[nodiscard]] std::vector<std::string> LogLines() const;

    /// Picks an entry of the build log's context menu, by its number from the top, the third one
    /// by mouse. What the entry does may come later.
    void PickFromLogMenu(int entry) const;

    /// Waits for the program's end. @return its exit code
    [[nodiscard]] DWORD AwaitEnd() const;
    [[nodiscard]] bool HasEnded() const;

private:
    [[nodiscard]] HWND AwaitTopWindow(const std::string& type, const std::string& titleStart,
                                      bool mayBeOwned) const;
    [[nodiscard]] std::string Seen() const;
    [[nodiscard]] std::vector<HWND> TabOrder() const;

    UniqueHandle<EndProgram, HANDLE> process_;
    DWORD processId_ = 0;
    std::string folder_;
    HWND window_ = nullptr;
};

} // namespace vesk::test
