#include "ui/editor/frmCheck.h"

#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

#include <algorithm>
#include <utility>

namespace vesk {

namespace {

constexpr int kLineMargin = 8; // pixels at 96 DPI behind the widest line

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
    layout_.Attach(Window());
    layout_.Add(Control(IDC_LST_PROBLEMS), clsLayout::kGrowX | clsLayout::kGrowY);
    for (const int id : {IDC_CMD_GO_TO, IDCANCEL})
        layout_.Add(Control(id), clsLayout::kMoveX | clsLayout::kMoveY);
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
    GrowToLines(widest);
    CenterWindow(Window());
}

/// Makes the window as large as its lines need, as far as the screen goes.
void frmCheck::GrowToLines(int widest) {
    const HWND list = Control(IDC_LST_PROBLEMS);
    const SIZE inside = InnerSize(list);
    const LONG lineHeight = static_cast<LONG>(SendMessageA(list, LB_GETITEMHEIGHT, 0, 0));
    const LONG wanted = lineHeight * static_cast<LONG>(problems_.size() + 1);
    RECT whole{};
    GetWindowRect(Window(), &whole);
    const RECT work = WorkAreaOf(Window());
    const LONG width = whole.right - whole.left + std::max<LONG>(0, widest - inside.cx);
    const LONG height = whole.bottom - whole.top + std::max<LONG>(0, wanted - inside.cy);
    SetWindowPos(Window(), nullptr, 0, 0, std::min(width, work.right - work.left),
                 std::min(height, (work.bottom - work.top) * 3 / 4), SWP_NOMOVE | SWP_NOZORDER);
    layout_.OnSize();
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
        layout_.OnSize();
        return TRUE;
    case WM_GETMINMAXINFO:
        layout_.LimitSize(*reinterpret_cast<MINMAXINFO*>(lparam));
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace vesk
