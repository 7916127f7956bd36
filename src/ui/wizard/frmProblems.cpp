#include "ui/wizard/frmProblems.h"

#include "ui/kit/modReadOnlyText.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"
#include "ui/wizard/modNavigation.h"

#include <cstddef>
#include <string>

namespace vesk {

namespace {

const std::string& ColumnOf(const Problem& problem, int column) {
    return column == 0 ? problem.place : column == 1 ? problem.what : problem.reason;
}

} // namespace

void frmProblems::Show(HWND owner) {
    RunModal(owner, IDD_PROBLEMS);
}

void frmProblems::OnCreated() {
    SetWindowIcon(Window());
    layout_.Attach(Window());
    layout_.Add(Control(IDC_LST_NOT_DONE), clsLayout::kGrowX | clsLayout::kGrowY);
    layout_.Add(Control(IDC_TXT_NOT_DONE), clsLayout::kGrowX | clsLayout::kMoveY);
    layout_.Add(Control(IDC_CMD_COPY), clsLayout::kMoveX | clsLayout::kMoveY);
    layout_.Add(Control(IDCANCEL), clsLayout::kMoveX | clsLayout::kMoveY);
    SetText(Window(), ProblemCount(problems_.size()));
    list_.Attach(
        Control(IDC_LST_NOT_DONE),
        {.titles = {"Place", "What", "Why"},
         .count = [this] { return problems_.size(); },
         .cell = [this](std::size_t line, int column) { return ColumnOf(problems_[line], column); },
         .whole = [this](std::size_t line) { return problems_[line].Line(); }});
    MakePlainText(whole_, Control(IDC_TXT_NOT_DONE));
    ListView_SetItemState(list_.Window(), 0, LVIS_FOCUSED, LVIS_FOCUSED);
    ShowWhole();
    CenterWindow(Window());
}

/// What the columns cut off is shown below the list.
void frmProblems::ShowWhole() const {
    const auto line = static_cast<std::size_t>(list_.Focused());
    if (line < problems_.size())
        SetText(Control(IDC_TXT_NOT_DONE), problems_[line].Line());
}

INT_PTR frmProblems::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        SetFocus(list_.Window());
        return FALSE;
    case WM_COMMAND:
        if (LOWORD(wparam) == IDC_CMD_COPY)
            list_.Copy();
        else if (LOWORD(wparam) == IDCANCEL)
            EndDialog(Window(), IDCANCEL);
        return TRUE;
    case WM_NOTIFY: {
        const auto& header = *reinterpret_cast<const NMHDR*>(lparam);
        if (!list_.HandleNotify(header) && header.code == LVN_ITEMCHANGED)
            ShowWhole();
        return TRUE;
    }
    default:
        if (!layout_.Handle(message, lparam))
            return FALSE;
        list_.FitColumns();
        return TRUE;
    }
}

} // namespace vesk
