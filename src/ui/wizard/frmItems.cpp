#include "ui/wizard/frmItems.h"

#include "base/modText.h"
#include "ui/kit/modReadOnlyText.h"
#include "ui/resources/ids.h"
#include "ui/wizard/modWizardText.h"

namespace vesk {

frmItems::frmItems(const Catalogue& catalogue, const EntryPlace& place,
                   clsProgramArchives& archives)
    : place_(place),
      entry_(EntriesOf(catalogue, place.list).at(place.index)),
      category_(CategoryTitle(catalogue, entry_)),
      archives_(archives) {}

void frmItems::Show(HWND owner) {
    RunModal(GetAncestor(owner, GA_ROOT), IDD_ITEMS);
}

void frmItems::OnCreated() {
    auto* const font = reinterpret_cast<HFONT>(SendMessageA(Window(), WM_GETFONT, 0, 0));
    nameFont_ = DerivedFont(font, FW_BOLD, 100);
    SendMessageA(Control(IDC_LBL_ITEM_NAME), WM_SETFONT, reinterpret_cast<WPARAM>(nameFont_.Get()),
                 FALSE);
    // It stands exactly above the labels.
    SendMessageA(Control(IDC_LBL_ITEM_NAME), EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, 0);
    const auto show = [this](int id, const std::string& text, const std::string& whenEmpty) {
        SetText(Control(id), text.empty() ? whenEmpty : text);
    };
    show(IDC_LBL_ITEM_NAME, entry_.name, "(no name)");
    show(IDC_TXT_ITEM_ARCHIVE, entry_.zip, "none");
    show(IDC_TXT_ITEM_CATEGORY, category_,
         place_.list == EntryList::Plugins ? "none" : "base component");
    show(IDC_TXT_ITEM_CRC, entry_.crc, "not given");
    const ArchiveState state =
        JudgeArchive(entry_, place_, archives_.Facts(entry_.zip, LetWindowsPaint));
    show(IDC_TXT_ITEM_STATE, ArchiveSentence(entry_, place_, state), "");
    show(IDC_TXT_ITEM_TICK, InBuildText(entry_, place_.list, state), "");
    show(IDC_TXT_ITEM_URL, ReplaceAll(ReplaceAll(entry_.url, ", ", ","), ",", "\r\n"), "none");
    ShowWholeName();
    MakePlainText(address_, Control(IDC_TXT_ITEM_URL));
    MakePlainText(name_, Control(IDC_LBL_ITEM_NAME));
    CenterWindow(Window());
}

/// A long name takes as many lines as it needs; everything below moves down, and the dialog grows.
void frmItems::ShowWholeName() const {
    const HWND name = Control(IDC_LBL_ITEM_NAME);
    RECT area = AreaOf(name);
    const LONG lines = static_cast<LONG>(SendMessageA(name, EM_GETLINECOUNT, 0, 0));
    const LONG more = (lines - 1) * TextSize(name, "X").cy;
    SetWindowPos(name, nullptr, 0, 0, area.right - area.left, area.bottom - area.top + more,
                 SWP_NOMOVE | SWP_NOZORDER);
    for (HWND below = GetWindow(Window(), GW_CHILD); below; below = GetWindow(below, GW_HWNDNEXT)) {
        area = AreaOf(below);
        if (below != name)
            SetWindowPos(below, nullptr, area.left, area.top + more, 0, 0,
                         SWP_NOSIZE | SWP_NOZORDER);
    }
    GetWindowRect(Window(), &area);
    SetWindowPos(Window(), nullptr, 0, 0, area.right - area.left, area.bottom - area.top + more,
                 SWP_NOMOVE | SWP_NOZORDER);
}

INT_PTR frmItems::Handle(UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        SetFocus(Control(IDCANCEL));
        return FALSE;
    case WM_COMMAND:
        if (LOWORD(wparam) == IDCANCEL)
            EndDialog(Window(), IDCANCEL);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace vesk
