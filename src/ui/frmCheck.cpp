#include "ui/frmCheck.h"

#include "ui/modWindow.h"
#include "ui/resources/ids.h"

#include <algorithm>
#include <utility>

namespace vesk {

namespace {

constexpr int kLineMargin = 8; // pixels at 96 DPI behind the widest line

SIZE ClientSize(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    return {client.right, client.bottom};
}

} // namespace

frmCheck::frmCheck(CatalogueCheck check)
    : problems_(std::move(check.problems)), verdict_(check.Verdict()) {}

std::optional<EntryPlace> frmCheck::Show(HWND owner) {
    if (problems_.empty())
        ShowMessage(owner, verdict_, "Check", MB_OK | MB_ICONINFORMATION);
    else
        RunModal(owner, IDD_CHECK);
    return chosen_;
}

void frmCheck::OnCreated() {
    SetWindowIcon(Window());
    RECT whole{};
    GetWindowRect(Window(), &whole);
    smallest_ = {whole.right - whole.left, whole.bottom - whole.top};
    client_ = ClientSize(Window());
    const HWND list = Control(IDC_LST_PROBLEMS);
    int widest = 0;
    for (const CatalogueProblem& problem : problems_) {
        const std::string line = problem.Line();
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
        widest = std::max(widest, TextWidth(list, line) + ScalePixels(kLineMargin));
    }
    SendMessageA(list, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest), 0);
    SendMessageA(list, LB_SETCURSEL, 0, 0);
    ShowWhereToGo();
    CenterWindow(Window());
}

const CatalogueProblem* frmCheck::Selected() const {
    const auto line =
        static_cast<std::size_t>(SendMessageA(Control(IDC_LST_PROBLEMS), LB_GETCURSEL, 0, 0));
    return line < problems_.size() ? &problems_[line] : nullptr;
}

void frmCheck::ShowWhereToGo() const {
    const CatalogueProblem* problem = Selected();
    EnableWindow(Control(IDC_CMD_GO_TO), problem && problem->place);
}

void frmCheck::GoTo() {
    const CatalogueProblem* problem = Selected();
    if (!problem || !problem->place)
        return;
    chosen_ = problem->place;
    EndDialog(Window(), IDOK);
}

void frmCheck::OnCommand(int id, int notification) {
    if (id == IDCANCEL)
        EndDialog(Window(), IDCANCEL);
    else if (id == IDC_CMD_GO_TO || (id == IDC_LST_PROBLEMS && notification == LBN_DBLCLK))
        GoTo();
    else if (id == IDC_LST_PROBLEMS && notification == LBN_SELCHANGE)
        ShowWhereToGo();
}

/// The list takes the room that the window gains, the buttons stay in its corner.
void frmCheck::OnSize() {
    const SIZE now = ClientSize(Window());
    if (client_.cx == 0 || now.cx == 0)
        return; // not made yet, or minimised
    const SIZE gain{now.cx - client_.cx, now.cy - client_.cy};
    client_ = now;
    const auto place = [&](int id, bool grows) {
        RECT area{};
        GetWindowRect(Control(id), &area);
        MapWindowPoints(nullptr, Window(), reinterpret_cast<POINT*>(&area), 2);
        const SIZE moved = grows ? SIZE{} : gain;
        const SIZE grown = grows ? gain : SIZE{};
        MoveWindow(Control(id), area.left + moved.cx, area.top + moved.cy,
                   area.right - area.left + grown.cx, area.bottom - area.top + grown.cy, TRUE);
    };
    place(IDC_LST_PROBLEMS, true);
    place(IDC_CMD_GO_TO, false);
    place(IDCANCEL, false);
}

INT_PTR frmCheck::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        SetFocus(Control(IDC_LST_PROBLEMS));
        return FALSE;
    case WM_COMMAND:
        OnCommand(LOWORD(wparam), HIWORD(wparam));
        return TRUE;
    case WM_SIZE:
        OnSize();
        return TRUE;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(lparam)->ptMinTrackSize = {smallest_.cx, smallest_.cy};
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace vesk
