#include "ui/wizard/frmSelOS.h"

#include "ui/kit/modColumns.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

#include <commctrl.h>

#include <algorithm>

namespace vesk {

namespace {

constexpr UINT kScanMessage = WM_APP;

void SetCell(HWND list, int line, int column, const std::string& text) {
    LVITEMA item{};
    item.mask = LVIF_TEXT;
    item.iItem = line;
    item.iSubItem = column;
    item.pszText = const_cast<char*>(text.c_str()); // only read
    SendMessageA(list, column == 0 ? LVM_INSERTITEMA : LVM_SETITEMA, 0,
                 reinterpret_cast<LPARAM>(&item));
}

} // namespace

frmSelOS::frmSelOS(SourceState& source) : scan_(*this, source) {}

std::optional<FoundSource> frmSelOS::Choose(HWND owner) {
    RunModal(owner, IDD_SELOS);
    return chosen_;
}

HWND frmSelOS::List() const {
    return Control(IDC_LST_FOUND);
}

void frmSelOS::OnCreated() {
    SetWindowIcon(Window());
    CenterWindow(Window());
    ListView_SetExtendedListViewStyle(List(), LVS_EX_FULLROWSELECT);
    AddColumns();
    note_.Attach(List(), "Nothing found yet.");
    layout_.Attach(Window());
    layout_.Add(List(), clsLayout::kGrowX | clsLayout::kGrowY);
    layout_.Add(Control(IDC_LABEL1), clsLayout::kGrowX | clsLayout::kMoveY);
    layout_.Add(Control(IDC_CMD_STOP), clsLayout::kMoveY);
    layout_.Add(Control(IDC_CMD_SELECT), clsLayout::kMoveX | clsLayout::kMoveY);
    layout_.Add(Control(IDCANCEL), clsLayout::kMoveX | clsLayout::kMoveY);
    PostMessageA(Window(), kScanMessage, 0, 0);
}

void frmSelOS::AddColumns() {
    int column = 0;
    for (const char* title : {"Directory", "Product Name"}) {
        LVCOLUMNA description{};
        description.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        description.cx = ScalePixels(180);
        description.iSubItem = column;
        description.pszText = const_cast<char*>(title);
        SendMessageA(List(), LVM_INSERTCOLUMNA, static_cast<WPARAM>(column++),
                     reinterpret_cast<LPARAM>(&description));
    }
    FitColumns();
}

void frmSelOS::FitColumns() {
    const int width = InnerSize(List()).cx;
    ListView_SetColumnWidth(List(), 0, LVSCW_AUTOSIZE);
    ListView_SetColumnWidth(List(), 1, LVSCW_AUTOSIZE);
    const std::vector<int> widths =
        ShareWidth({std::max(ListView_GetColumnWidth(List(), 0), width / 2),
                    ListView_GetColumnWidth(List(), 1)},
                   width);
    ListView_SetColumnWidth(List(), 0, widths[0]);
    ListView_SetColumnWidth(List(), 1, widths[1]);
}

void frmSelOS::Scan() {
    if (scanning_)
        return; // the scan before has not noticed yet that it was stopped: it starts anew itself
    scanning_ = true;
    do {
        found_.clear();
        ShowScanning();
        restart_ = false;
        scan_.Run(SearchableDrives(GetLogicalDrives()));
    } while (restart_ && !closed_);
    scanning_ = false;
    if (!closed_)
        ShowResult();
}

void frmSelOS::ShowScanning() const {
    ListView_DeleteAllItems(List());
    EnableWindow(Control(IDC_CMD_STOP), TRUE);
    EnableWindow(Control(IDC_CMD_SELECT), FALSE);
}

/// The first find is ready to be taken. The first button keeps its caption: after a scan that ran
/// to its end it says "Stop" until it is clicked, and then "Start".
void frmSelOS::ShowResult() {
    note_.SetNote("No Windows installation files were found.");
    FitColumns();
    SetText(Control(IDC_LABEL1), "");
    if (found_.empty())
        return;
    EnableWindow(Control(IDC_CMD_SELECT), TRUE);
    SendMessageA(Window(), DM_SETDEFID, IDC_CMD_SELECT, 0);
    if (ListView_GetNextItem(List(), -1, LVNI_SELECTED) < 0)
        ListView_SetItemState(List(), 0, LVIS_SELECTED | LVIS_FOCUSED,
                              LVIS_SELECTED | LVIS_FOCUSED);
    SetFocus(List());
}

void frmSelOS::StopOrStart() {
    if (!scan_.IsStopped()) {
        SetText(Control(IDC_CMD_STOP), "&Start");
        scan_.Stop();
        return;
    }
    SetText(Control(IDC_CMD_STOP), "&Stop");
    SendMessageA(Window(), DM_SETDEFID, IDC_CMD_STOP, 0);
    note_.SetNote("Nothing found yet.");
    restart_ = true;
    Scan();
}

/// Also when the wizard below is closed meanwhile: the scan then ends, and with it the program.
void frmSelOS::Close(INT_PTR result) {
    closed_ = true;
    scan_.Stop();
    EndDialog(Window(), result);
}

void frmSelOS::Select() {
    const int line = ListView_GetNextItem(List(), -1, LVNI_SELECTED);
    if (line < 0)
        return;
    chosen_ = found_.at(static_cast<std::size_t>(line));
    Close(IDOK);
}

void frmSelOS::OnCommand(int id) {
    switch (id) {
    case IDC_CMD_STOP:
        StopOrStart();
        break;
    case IDC_CMD_SELECT:
        Select();
        break;
    case IDCANCEL:
        Close(IDCANCEL);
        break;
    default:
        break;
    }
}

void frmSelOS::OnFolder(const std::string& folder) {
    SetText(Control(IDC_LABEL1), folder);
}

void frmSelOS::OnFound(const FoundSource& found) {
    const int line = static_cast<int>(found_.size());
    found_.push_back(found);
    SetCell(List(), line, 0, found.rootFolder);
    SetCell(List(), line, 1, found.productName + " " + found.servicePackTag);
}

void frmSelOS::OnEntryDone() {
    RunPendingEvents();
}

INT_PTR frmSelOS::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        return TRUE;
    case kScanMessage:
        Scan();
        return TRUE;
    case WM_COMMAND:
        OnCommand(LOWORD(wparam));
        return TRUE;
    case WM_SIZE:
        layout_.OnSize();
        FitColumns();
        return TRUE;
    case WM_GETMINMAXINFO:
        layout_.LimitSize(*reinterpret_cast<MINMAXINFO*>(lparam));
        return TRUE;
    case WM_DESTROY:
        Close(IDCANCEL);
        return TRUE;
    case WM_NOTIFY: {
        const auto& header = *reinterpret_cast<const NMHDR*>(lparam);
        if (header.idFrom == IDC_LST_FOUND && header.code == NM_DBLCLK &&
            IsWindowEnabled(Control(IDC_CMD_SELECT)))
            Select();
        return FALSE;
    }
    default:
        return FALSE;
    }
}

} // namespace vesk
