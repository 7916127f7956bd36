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
    Follow(clsLayout::kGrowX | clsLayout::kGrowY, {IDC_LST_NOT_DONE});
    Follow(clsLayout::kGrowX | clsLayout::kMoveY, {IDC_TXT_NOT_DONE});
    Follow(clsLayout::kMoveX | clsLayout::kMoveY, {IDC_CMD_COPY, IDCANCEL});
    SetText(Window(), ProblemCount(problems_.size()));
    List().Attach(
        Control(IDC_LST_NOT_DONE),
        {.titles = {"Place", "What", "Why"},
         .count = [this] { return problems_.size(); },
         .cell = [this](std::size_t line, int column) { return ColumnOf(problems_[line], column); },
         .whole = [this](std::size_t line) { return problems_[line].Line(); }});
    MakePlainText(whole_, Control(IDC_TXT_NOT_DONE));
    ListView_SetItemState(List().Window(), 0, LVIS_FOCUSED, LVIS_FOCUSED);
    ShowWhole();
}

/// What the columns cut off is shown below the list.
void frmProblems::ShowWhole() const {
    const auto line = static_cast<std::size_t>(List().Focused());
    if (line < problems_.size())
        SetText(Control(IDC_TXT_NOT_DONE), problems_[line].Line());
}

void frmProblems::OnCommand(int id, int) {
    if (id == IDC_CMD_COPY)
        List().Copy();
    else if (id == IDCANCEL)
        EndDialog(Window(), IDCANCEL);
}

void frmProblems::OnListNotify(const NMHDR& header) {
    if (header.code == LVN_ITEMCHANGED)
        ShowWhole();
}

} // namespace vesk
