#include "ui/editor/frmCategories.h"

#include "base/ScopeFlag.h"
#include "catalogue/modCatalogueFile.h"
#include "catalogue/modCategoryCaption.h"
#include "catalogue/modCategoryCheck.h"
#include "ui/kit/modBoxText.h"
#include "ui/kit/modEnable.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace vesk {

namespace {

constexpr const char* kCategoryTitle = "Category";

} // namespace

frmCategories::frmCategories(clsCatalogueEditor& editor)
    : editor_(editor), categories_(editor.Categories(), CategoryCaption) {}

bool frmCategories::Show(HWND owner) {
    return RunModal(owner, IDD_CATEGORIES) == IDOK;
}

void frmCategories::OnCreated() {
    FollowSize();
    List().Attach(Control(IDC_LST_CATEGORIES), {.titles = {"Key", "Folder", "Title"},
                                                .count = [this] { return categories_.Count(); },
                                                .cell =
                                                    [this](std::size_t line, int column) {
                                                        const CategoryRecord& category =
                                                            categories_.At(line);
                                                        return column == 0   ? category.key
                                                               : column == 1 ? category.value
                                                                             : category.caption;
                                                    },
                                                .whenEmpty = "There are no categories."});
    CheckDlgButton(Window(), IDC_CHK_SHOW_CATEGORIES,
                   editor_.ShowCategories() ? BST_CHECKED : BST_UNCHECKED);
    ShowList();
}

void frmCategories::FollowSize() {
    Follow(clsLayout::kGrowX | clsLayout::kGrowY, {IDC_LST_CATEGORIES});
    Follow(clsLayout::kMoveX, {IDC_CMD_CATEGORY_ADD, IDC_CMD_CATEGORY_REMOVE, IDC_CMD_CATEGORY_UP,
                               IDC_CMD_CATEGORY_DOWN});
    Follow(clsLayout::kMoveY, {IDC_LBL_CATEGORY_KEY, IDC_TXT_CATEGORY_KEY, IDC_LBL_CATEGORY_FOLDER,
                               IDC_CHK_SHOW_CATEGORIES});
    Follow(clsLayout::kGrowX | clsLayout::kMoveY, {IDC_TXT_CATEGORY_FOLDER});
    Follow(clsLayout::kMoveX | clsLayout::kMoveY, {IDOK, IDCANCEL});
}

void frmCategories::ShowList() {
    const ScopeFlag showing(showing_);
    List().Refresh();
    static_assert(clsReportList::kNone == kNoSelection);
    List().Select(categories_.Selected());
    ShowCurrent();
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
               Control(IDC_CMD_CATEGORY_DOWN), categories_.CanMoveDown(), List().Window());
}

void frmCategories::OnField(int id) {
    if (showing_)
        return;
    ReplaceForeignLetters(Control(id));
    const std::string text = TextOf(Control(id));
    if (id == IDC_TXT_CATEGORY_KEY)
        categories_.SetKey(text);
    else
        categories_.SetValue(text);
    List().Refresh();
}

void frmCategories::OnSelected() {
    if (showing_)
        return;
    categories_.Select(List().Selected());
    ShowCurrent();
}

void frmCategories::Remove() {
    const CategoryRecord* category = categories_.Current();
    if (!category)
        return;
    const std::string key = categories_.OriginalKey();
    const std::size_t users = key.empty() ? 0 : editor_.PluginsIn(key);
    const std::string question = "The category '" + Shortened(category->key) + "' holds " +
                                 std::to_string(users) + (users == 1 ? " plug-in" : " plug-ins") +
                                 ", then left without a category. Remove it anyway ?";
    if (users == 0 ||
        ShowMessage(Window(), question, kCategoryTitle, MB_YESNO | MB_ICONQUESTION) == IDYES)
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

/// Whether the box is ticked.
bool frmCategories::ShowsCategories() const {
    return IsDlgButtonChecked(Window(), IDC_CHK_SHOW_CATEGORIES) == BST_CHECKED;
}

/// Whether Cancel would lose an edit.
bool frmCategories::IsModified() const {
    return categories_.Categories() != editor_.Categories() ||
           ShowsCategories() != editor_.ShowCategories();
}

/// Nothing goes into the catalogue that its file would not give back.
void frmCategories::Accept() {
    const std::vector<std::string> faults = CategoryFaults(categories_.Categories());
    const auto fault = std::ranges::find_if(faults, [](const auto& text) { return !text.empty(); });
    if (fault == faults.end()) {
        editor_.TakeCategories(categories_.Categories(), ShowsCategories(), categories_.Renames());
        EndDialog(Window(), IDOK);
        return;
    }
    categories_.Select(static_cast<int>(fault - faults.begin()));
    ShowList();
    const std::string key = categories_.Current()->key;
    ShowMessage(Window(),
                (key.empty() ? "This category: " : "The category '" + Shortened(key) + "': ") +
                    *fault + ".",
                kCategoryTitle, MB_OK | MB_ICONWARNING);
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

/// The editor behind it knows nothing of edits that were not taken over yet.
INT_PTR frmCategories::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    return message == WM_QUERYENDSESSION ? Answer(!IsModified())
                                         : clsListDialog::Handle(message, wparam, lparam);
}

void frmCategories::OnListNotify(const NMHDR& header) {
    if (header.code == LVN_ITEMCHANGED || header.code == LVN_ODSTATECHANGED)
        OnSelected();
}

} // namespace vesk
