#include "ui/wizard/frmProblems.h"

#include "ui/kit/modReadOnlyText.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"
#include "ui/wizard/modNavigation.h"

#include <commctrl.h>

#include <array>

namespace vesk {

namespace {

constexpr std::array<const char*, 3> kTitles{"Place", "What", "Why"};

const std::string& ColumnOf(const Problem& problem, int column) {
    return column == 0 ? problem.place : column == 1 ? problem.what : problem.reason;
}

} // namespace

void frmProblems::Show(HWND owner) {
    RunModal(owner, IDD_PROBLEMS);
}

HWND frmProblems::List() const {
    return Control(IDC_LST_NOT_DONE);
}

void frmProblems::OnCreated() {
    SetWindowIcon(Window());
    layout_.Attach(Window());
    layout_.Add(List(), clsLayout::kGrowX | clsLayout::kGrowY);
    layout_.Add(Control(IDC_TXT_NOT_DONE), clsLayout::kGrowX | clsLayout::kMoveY);
    layout_.Add(Control(IDC_CMD_COPY), clsLayout::kMoveX | clsLayout::kMoveY);
    layout_.Add(Control(IDCANCEL), clsLayout::kMoveX | clsLayout::kMoveY);
    SetText(Window(), ProblemCount(problems_.size()));
    ListView_SetExtendedListViewStyle(List(), LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    AddColumns();
    // Its texts are asked for when they are shown: there can be thousands.
    ListView_SetItemCount(List(), static_cast<int>(problems_.size()));
    FitColumns();
    keys_.Attach(List(), [this](UINT message, WPARAM wparam, LPARAM) {
        return OnListMessage(message, wparam);
    });
    MakePlainText(whole_, Control(IDC_TXT_NOT_DONE));
    ListView_SetItemState(List(), 0, LVIS_FOCUSED, LVIS_FOCUSED);
    ShowWhole(0);
    CenterWindow(Window());
}

void frmProblems::AddColumns() const {
    int column = 0;
    for (const char* title : kTitles) {
        LVCOLUMNA description{};
        description.mask = LVCF_TEXT | LVCF_SUBITEM;
        description.iSubItem = column;
        description.pszText = const_cast<char*>(title); // only read
        SendMessageA(List(), LVM_INSERTCOLUMNA, static_cast<WPARAM>(column++),
                     reinterpret_cast<LPARAM>(&description));
    }
}

/// All three stay in sight; what they cut off is shown below the list.
void frmProblems::FitColumns() const {
    const int width = InnerSize(List()).cx;
    const int place = width * 2 / 5;
    const int what = width / 5;
    ListView_SetColumnWidth(List(), 0, place);
    ListView_SetColumnWidth(List(), 1, what);
    ListView_SetColumnWidth(List(), 2, width - place - what);
}

void frmProblems::ShowWhole(int line) const {
    if (line >= 0 && line < static_cast<int>(problems_.size()))
        SetText(Control(IDC_TXT_NOT_DONE), problems_[static_cast<std::size_t>(line)].Line());
}

/// Puts the selected lines on the clipboard; all of them when none is selected.
void frmProblems::Copy() const {
    const bool all = ListView_GetSelectedCount(List()) == 0;
    std::string text;
    const int flags = all ? LVNI_ALL : LVNI_SELECTED;
    for (int line = ListView_GetNextItem(List(), -1, flags); line >= 0;
         line = ListView_GetNextItem(List(), line, flags))
        text += problems_.at(static_cast<std::size_t>(line)).Line() + "\r\n";
    PutOnClipboard(Window(), text);
}

void frmProblems::SelectAll() const {
    ListView_SetItemState(List(), -1, LVIS_SELECTED, LVIS_SELECTED);
}

std::optional<LRESULT> frmProblems::OnListMessage(UINT message, WPARAM wparam) {
    if (message != WM_KEYDOWN || GetKeyState(VK_CONTROL) >= 0)
        return std::nullopt;
    if (wparam == 'C' || wparam == VK_INSERT)
        Copy();
    else if (wparam == 'A')
        SelectAll();
    else
        return std::nullopt;
    return 0;
}

void frmProblems::GiveText(const NMHDR& request) const {
    const LVITEMA& item = reinterpret_cast<const NMLVDISPINFOA&>(request).item;
    if ((item.mask & LVIF_TEXT) != 0 && item.iItem < static_cast<int>(problems_.size()))
        lstrcpynA(item.pszText,
                  ColumnOf(problems_[static_cast<std::size_t>(item.iItem)], item.iSubItem).c_str(),
                  item.cchTextMax);
}

void frmProblems::OnNotify(const NMHDR& header) {
    if (header.hwndFrom != List())
        return;
    if (header.code == LVN_GETDISPINFOA)
        return GiveText(header);
    if (header.code == LVN_ITEMCHANGED)
        ShowWhole(ListView_GetNextItem(List(), -1, LVNI_FOCUSED));
}

void frmProblems::OnSize() const {
    layout_.OnSize();
    FitColumns();
}

INT_PTR frmProblems::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        SetFocus(List());
        return FALSE;
    case WM_COMMAND:
        if (LOWORD(wparam) == IDC_CMD_COPY)
            Copy();
        else if (LOWORD(wparam) == IDCANCEL)
            EndDialog(Window(), IDCANCEL);
        return TRUE;
    case WM_NOTIFY:
        OnNotify(*reinterpret_cast<const NMHDR*>(lparam));
        return TRUE;
    case WM_SIZE:
        OnSize();
        return TRUE;
    case WM_GETMINMAXINFO:
        layout_.LimitSize(*reinterpret_cast<MINMAXINFO*>(lparam));
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace vesk
