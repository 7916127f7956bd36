#include "ui/editor/frmCategories.h"

#include "catalogue/modCatalogueFile.h"
#include "catalogue/modCategoryCheck.h"
#include "ui/kit/ScopeFlag.h"
#include "ui/kit/modEnable.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

#include <commctrl.h>

#include <algorithm>
#include <array>

namespace vesk {

namespace {

constexpr const char* kTitle = "Category";
constexpr std::array kTitles{"Key", "Folder", "Title"};

void SetCell(HWND list, int line, int column, const std::string& text) {
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = const_cast<char*>(text.c_str()); // only read
    SendMessageA(list, LVM_SETITEMTEXTA, static_cast<WPARAM>(line),
                 reinterpret_cast<LPARAM>(&item));
}

} // namespace

frmCategories::frmCategories(clsCatalogueEditor& editor)
    : editor_(editor), categories_(editor.Categories(), CategoryCaption) {}

bool frmCategories::Show(HWND owner) {
    return RunModal(owner, IDD_CATEGORIES) == IDOK;
}

HWND frmCategories::List() const {
    return Control(IDC_LST_CATEGORIES);
}

void frmCategories::OnCreated() {
    SetWindowIcon(Window());
    FollowSize();
    ListView_SetExtendedListViewStyle(List(), LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    int column = 0;
    for (const char* title : kTitles) {
        LVCOLUMNA description{};
        description.mask = LVCF_TEXT | LVCF_SUBITEM;
        description.iSubItem = column;
        description.pszText = const_cast<char*>(title); // only read
        SendMessageA(List(), LVM_INSERTCOLUMNA, static_cast<WPARAM>(column++),
                     reinterpret_cast<LPARAM>(&description));
    }
    note_.Attach(List(), "There are no categories.");
    FitColumns();
    CheckDlgButton(Window(), IDC_CHK_SHOW_CATEGORIES,
                   editor_.ShowCategories() ? BST_CHECKED : BST_UNCHECKED);
    ShowList();
    CenterWindow(Window());
}

void frmCategories::FollowSize() {
    layout_.Attach(Window());
    layout_.Add(List(), clsLayout::kGrowX | clsLayout::kGrowY);
    for (const int id : {IDC_CMD_CATEGORY_ADD, IDC_CMD_CATEGORY_REMOVE, IDC_CMD_CATEGORY_UP,
                         IDC_CMD_CATEGORY_DOWN})
        layout_.Add(Control(id), clsLayout::kMoveX);
    for (const int id : {IDC_LBL_CATEGORY_KEY, IDC_TXT_CATEGORY_KEY, IDC_LBL_CATEGORY_FOLDER,
                         IDC_CHK_SHOW_CATEGORIES})
        layout_.Add(Control(id), clsLayout::kMoveY);
    layout_.Add(Control(IDC_TXT_CATEGORY_FOLDER), clsLayout::kGrowX | clsLayout::kMoveY);
    for (const int id : {IDOK, IDCANCEL})
        layout_.Add(Control(id), clsLayout::kMoveX | clsLayout::kMoveY);
}

void frmCategories::FitColumns() const {
    const int width = InnerSize(List()).cx - GetSystemMetrics(SM_CXVSCROLL);
    const int key = width / 5;
    const int folder = (width - key) / 2;
    ListView_SetColumnWidth(List(), 0, key);
    ListView_SetColumnWidth(List(), 1, folder);
    ListView_SetColumnWidth(List(), 2, width - key - folder);
}

void frmCategories::ShowList() {
    const ScopeFlag showing(showing_);
    ListView_DeleteAllItems(List());
    int line = 0;
    for (const CategoryRecord& category : categories_.Categories()) {
        LVITEMA item{};
        item.iItem = line;
        SendMessageA(List(), LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
        ShowLine(line++, category);
    }
    const int selected = categories_.Selected();
    constexpr UINT kChosen = LVIS_SELECTED | LVIS_FOCUSED;
    if (selected >= 0) {
        ListView_SetItemState(List(), selected, kChosen, kChosen);
        ListView_EnsureVisible(List(), selected, FALSE);
    }
    ShowCurrent();
}

void frmCategories::ShowLine(int line, const CategoryRecord& category) const {
    SetCell(List(), line, 0, category.key);
    SetCell(List(), line, 1, category.value);
    SetCell(List(), line, 2, category.caption);
}

void frmCategories::ShowCurrent() {
    const ScopeFlag showing(showing_);
    const CategoryRecord* category = categories_.Current();
    SetText(Control(IDC_TXT_CATEGORY_KEY), category ? category->key : "");
    SetText(Control(IDC_TXT_CATEGORY_FOLDER), category ? category->value : "");
    EnableWhatWorks();
}

void frmCategories::EnableWhatWorks() const {
    const bool any = categories_.Current() != nullptr;
    EnableWindow(Control(IDC_TXT_CATEGORY_KEY), any);
    EnableWindow(Control(IDC_TXT_CATEGORY_FOLDER), any);
    EnableControl(Control(IDC_CMD_CATEGORY_REMOVE), any, Control(IDC_CMD_CATEGORY_ADD));
    EnablePair(Control(IDC_CMD_CATEGORY_UP), categories_.CanMoveUp(),
               Control(IDC_CMD_CATEGORY_DOWN), categories_.CanMoveDown(), List());
}

void frmCategories::OnField(int id) {
    if (showing_)
        return;
    const std::string text = TextOf(Control(id));
    if (id == IDC_TXT_CATEGORY_KEY)
        categories_.SetKey(text);
    else
        categories_.SetValue(text);
    if (categories_.Current())
        ShowLine(categories_.Selected(), *categories_.Current());
}

void frmCategories::OnSelected() {
    if (showing_)
        return;
    categories_.Select(ListView_GetNextItem(List(), -1, LVNI_SELECTED));
    ShowCurrent();
}

void frmCategories::Remove() {
    const CategoryRecord* category = categories_.Current();
    if (!category)
        return;
    const std::string key = categories_.OriginalKey();
    const std::size_t users = key.empty() ? 0 : editor_.PluginsIn(key);
    const std::string question = "The category '" + category->key + "' holds " +
                                 std::to_string(users) +
                                 (users == 1 ? " plug-in, which is" : " plug-ins, which are") +
                                 " then in none. Remove it all the same ?";
    if (users == 0 || ShowMessage(Window(), question, kTitle, MB_YESNO | MB_ICONQUESTION) == IDYES)
        categories_.Remove();
}

void frmCategories::Do(int button) {
    switch (button) {
    case IDC_CMD_CATEGORY_ADD:
        categories_.Add();
        break;
    case IDC_CMD_CATEGORY_REMOVE:
        Remove();
        break;
    case IDC_CMD_CATEGORY_UP:
        categories_.MoveUp();
        break;
    default:
        categories_.MoveDown();
        break;
    }
    ShowList();
    if (button == IDC_CMD_CATEGORY_ADD)
        SendMessageA(Window(), WM_NEXTDLGCTL,
                     reinterpret_cast<WPARAM>(Control(IDC_TXT_CATEGORY_KEY)), TRUE);
}

/// Nothing goes into the catalogue that its file would not give back.
void frmCategories::Accept() {
    const std::vector<std::string> faults = CategoryFaults(categories_.Categories());
    const auto fault = std::ranges::find_if(faults, [](const auto& text) { return !text.empty(); });
    if (fault == faults.end()) {
        editor_.TakeCategories(categories_.Categories(),
                               IsDlgButtonChecked(Window(), IDC_CHK_SHOW_CATEGORIES) == BST_CHECKED,
                               categories_.Renames());
        EndDialog(Window(), IDOK);
        return;
    }
    categories_.Select(static_cast<int>(fault - faults.begin()));
    ShowList();
    const std::string key = categories_.Current()->key;
    ShowMessage(Window(),
                (key.empty() ? "This category: " : "The category '" + key + "': ") + *fault + ".",
                kTitle, MB_OK | MB_ICONWARNING);
}

void frmCategories::OnCommand(int id, int notification) {
    if (id == IDOK)
        Accept();
    else if (id == IDCANCEL)
        EndDialog(Window(), IDCANCEL);
    else if (notification == EN_CHANGE)
        OnField(id);
    else if (notification == BN_CLICKED && id >= IDC_CMD_CATEGORY_ADD &&
             id <= IDC_CMD_CATEGORY_DOWN)
        Do(id);
}

INT_PTR frmCategories::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        SetFocus(List());
        return FALSE;
    case WM_COMMAND:
        OnCommand(LOWORD(wparam), HIWORD(wparam));
        return TRUE;
    case WM_NOTIFY:
        if (const auto& header = *reinterpret_cast<NMHDR*>(lparam);
            header.hwndFrom == List() && header.code == LVN_ITEMCHANGED)
            OnSelected();
        return TRUE;
    case WM_SIZE:
        layout_.OnSize();
        FitColumns();
        return TRUE;
    case WM_GETMINMAXINFO:
        layout_.LimitSize(*reinterpret_cast<MINMAXINFO*>(lparam));
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace vesk
