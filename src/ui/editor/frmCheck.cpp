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
    Follow(clsLayout::kGrowX | clsLayout::kGrowY, {IDC_LST_PROBLEMS});
    Follow(clsLayout::kGrowX | clsLayout::kMoveY, {IDC_TXT_PROBLEM});
    Follow(clsLayout::kMoveY, {IDC_CMD_CHECK_COPY});
    Follow(clsLayout::kMoveX | clsLayout::kMoveY, {IDC_CMD_GO_TO, IDCANCEL});
    List().Attach(Control(IDC_LST_PROBLEMS),
                  {.titles = {"Where", "What"},
                   .count = [this] { return problems_.size(); },
                   .cell =
                       [this](std::size_t line, int column) {
                           return column == 0 ? problems_[line].entry : problems_[line].sentence;
                       },
                   .whole = [this](std::size_t line) { return problems_[line].Line(); }});
    MakePlainText(whole_, Control(IDC_TXT_PROBLEM));
    List().Select(0);
    ShowSelected();
}

const CatalogueProblem* frmCheck::Selected() const {
    const auto line = static_cast<std::size_t>(List().Selected());
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

void frmCheck::OnCommand(int id, int) {
    switch (id) {
    case IDC_CMD_GO_TO:
        return GoTo();
    case IDC_CMD_CHECK_COPY:
        return List().Copy();
    case IDCANCEL:
        EndDialog(Window(), IDCANCEL);
        return;
    default:
        return;
    }
}

void frmCheck::OnListNotify(const NMHDR& header) {
    if (header.code == NM_DBLCLK)
        GoTo();
    else if (header.code == LVN_ITEMCHANGED)
        ShowSelected();
}

} // namespace vesk
