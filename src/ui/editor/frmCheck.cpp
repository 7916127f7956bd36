#include "ui/editor/frmCheck.h"

#include "ui/kit/modReadOnlyText.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

#include <cstddef>
#include <utility>

namespace vesk {

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
    layout_.Add(Control(IDC_TXT_PROBLEM), clsLayout::kGrowX | clsLayout::kMoveY);
    layout_.Add(Control(IDC_CMD_CHECK_COPY), clsLayout::kMoveY);
    for (const int id : {IDC_CMD_GO_TO, IDCANCEL})
        layout_.Add(Control(id), clsLayout::kMoveX | clsLayout::kMoveY);
    list_.Attach(Control(IDC_LST_PROBLEMS),
                 {.titles = {"Where", "What"},
                  .count = [this] { return problems_.size(); },
                  .cell =
                      [this](std::size_t line, int column) {
                          return column == 0 ? problems_[line].entry : problems_[line].sentence;
                      },
                  .whole = [this](std::size_t line) { return problems_[line].Line(); }});
    MakePlainText(whole_, Control(IDC_TXT_PROBLEM));
    list_.Select(0);
    ShowSelected();
    CenterWindow(Window());
}

const CatalogueProblem* frmCheck::Selected() const {
    const auto line = static_cast<std::size_t>(list_.Selected());
    return line < problems_.size() ? &problems_[line] : nullptr;
}

void frmCheck::ShowSelected() const {
    const CatalogueProblem* problem = Selected();
    SetText(Control(IDC_TXT_PROBLEM), problem ? problem->Line() : "");
    EnableWindow(Control(IDC_CMD_GO_TO), problem && problem->place);
}

void frmCheck::GoTo() {
    const CatalogueProblem* problem = Selected();
    if (!problem || !problem->place)
        return;
    chosen_ = problem->place;
    EndDialog(Window(), IDOK);
}

void frmCheck::OnCommand(int id) {
    switch (id) {
    case IDC_CMD_GO_TO:
        return GoTo();
    case IDC_CMD_CHECK_COPY:
        return list_.Copy();
    case IDCANCEL:
        EndDialog(Window(), IDCANCEL);
        return;
    default:
        return;
    }
}

void frmCheck::OnNotify(const NMHDR& header) {
    if (list_.HandleNotify(header) || header.hwndFrom != list_.Window())
        return;
    if (header.code == NM_DBLCLK)
        GoTo();
    else if (header.code == LVN_ITEMCHANGED)
        ShowSelected();
}

INT_PTR frmCheck::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        SetFocus(list_.Window());
        return FALSE;
    case WM_COMMAND:
        OnCommand(LOWORD(wparam));
        return TRUE;
    case WM_NOTIFY:
        OnNotify(*reinterpret_cast<const NMHDR*>(lparam));
        return TRUE;
    default:
        if (!layout_.Handle(message, lparam))
            return FALSE;
        list_.FitColumns();
        return TRUE;
    }
}

} // namespace vesk
