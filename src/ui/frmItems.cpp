#include "ui/frmItems.h"

#include "base/modText.h"
#include "ui/modWizardText.h"
#include "ui/resources/ids.h"

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
    const auto show = [this](int id, const std::string& text, const std::string& whenEmpty) {
        SetText(Control(id), text.empty() ? whenEmpty : text);
    };
    show(IDC_LBL_ITEM_NAME, entry_.name, "(no name)");
    show(IDC_TXT_ITEM_ARCHIVE, entry_.zip, "none");
    show(IDC_TXT_ITEM_CATEGORY, category_, "base component");
    show(IDC_TXT_ITEM_CRC, entry_.crc, "not given");
    const ArchiveState state = JudgeArchive(entry_, place_, archives_.Facts(entry_.zip));
    show(IDC_TXT_ITEM_STATE, ArchiveSentence(entry_, place_, state), "");
    show(IDC_TXT_ITEM_TICK, InBuildText(entry_, place_.list), "");
    show(IDC_TXT_ITEM_URL, ReplaceAll(entry_.url, ",", "\r\n"), "none");
    CenterWindow(Window());
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
