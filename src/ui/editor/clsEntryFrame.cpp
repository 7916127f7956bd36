#include "ui/editor/clsEntryFrame.h"

#include "archive/clsCRC.h"
#include "archive/modArchiveName.h"
#include "base/Failure.h"
#include "base/ScopeFlag.h"
#include "base/modFile.h"
#include "base/modText.h"
#include "catalogue/clsSha256List.h"
#include "ui/kit/clsWaitCursor.h"
#include "ui/kit/frmBrowse.h"
#include "ui/kit/modEnable.h"
#include "ui/kit/modResolution.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

namespace vesk {

namespace {

constexpr const char* kFileTitle = "Browse for File";

/// First numbers of the frame's control arrays, and its buttons.
struct FrameIds {
    int text;
    int combo;
    int add, remove, browse, up, down;
};

FrameIds IdsOf(clsEntryFrame::Kind kind) {
    const bool plugins = kind == EntryList::Plugins;
    const auto button = [&](EntryAction action) { return EntryButtonId(kind, action); };
    return {plugins ? IDC_TXT_BASE_PLUGIN : IDC_TXT_BASE,
            plugins ? IDC_CMB_BASE_PLUGIN : IDC_CMB_BASE,
            button(EntryAction::Add),
            button(EntryAction::Remove),
            button(EntryAction::Browse),
            button(EntryAction::MoveUp),
            button(EntryAction::MoveDown)};
}

/// A member of the text array and the field it edits.
struct TextField {
    int index;
    std::string CatalogueEntry::*field;
};
constexpr int kName = 0;
constexpr int kFileName = 1;
constexpr int kAddress = 4;
constexpr int kChecksum = 5;
constexpr std::array<TextField, 4> kTextFields{{{kName, &CatalogueEntry::name},
                                                {kFileName, &CatalogueEntry::zip},
                                                {kAddress, &CatalogueEntry::url},
                                                {kChecksum, &CatalogueEntry::crc}}};

/// A member of the combo array and the tick it edits.
struct TickField {
    int index;
    bool CatalogueEntry::*field;
};
constexpr int kSelector = 0;
constexpr int kEnabled = 1;
constexpr int kLocked = 2;
constexpr int kCategory = 3;
constexpr std::array<TickField, 2> kTickFields{
    {{kEnabled, &CatalogueEntry::enabled}, {kLocked, &CatalogueEntry::lock}}};

} // namespace

clsEntryFrame::clsEntryFrame(Kind kind, clsCatalogueEditor& editor, std::string programPath)
    : kind_(kind), editor_(editor), programPath_(std::move(programPath)) {}

clsEntryEditor& clsEntryFrame::Entries() const {
    return kind_ == Kind::Plugins ? editor_.Plugins() : editor_.Base();
}

HWND clsEntryFrame::Text(int index) const {
    return GetDlgItem(dialog_, IdsOf(kind_).text + index);
}

HWND clsEntryFrame::Combo(int index) const {
    return GetDlgItem(dialog_, IdsOf(kind_).combo + index);
}

void clsEntryFrame::Attach(HWND dialog, const clsToolTips& tips) {
    dialog_ = dialog;
    for (const TickField& tick : kTickFields)
        SetComboItems(Combo(tick.index), {"True", "False"});
    for (const int combo : {kSelector, kEnabled, kLocked, kCategory})
        MatchHeight(Combo(combo), Text(kName));
    AddTips(tips);
}

void clsEntryFrame::AddTips(const clsToolTips& tips) const {
    const FrameIds ids = IdsOf(kind_);
    tips.Add(ids.browse, "Browse for File");
    tips.Add(ids.text + kFileName, "The archive in the program folder, a .zip or .cab file");
    tips.Add(ids.text + kChecksum,
             "Checksum of the archive, upper-case hexadecimal without leading zeros");
    tips.Add(ids.text + kAddress,
             "Where the archive is downloaded from; commas separate several addresses");
    tips.Add(ids.combo + kEnabled, "Whether the wizard offers it ticked");
    tips.Add(ids.combo + kLocked, "Whether the tick cannot be changed in the wizard");
}

void clsEntryFrame::Show() {
    const ScopeFlag showing(showing_);
    SetComboItems(Combo(kSelector), Entries().Names());
    SetComboSelection(Combo(kSelector), Entries().Selected());
    WidenSelector();
    ShowFields();
}

/// The selector's list shows whole names, also those that the closed box cuts.
void clsEntryFrame::WidenSelector() const {
    constexpr std::size_t kManyLetters = 60; // a longer one is not measured: the screen has an end
    std::string longest;
    for (const CatalogueEntry& entry : Entries().Entries()) {
        if (entry.name.size() > longest.size())
            longest = entry.name;
    }
    const int width = TextWidth(Combo(kSelector), longest.substr(0, kManyLetters)) +
                      2 * ScrollBarWidth(Combo(kSelector));
    SendMessageA(Combo(kSelector), CB_SETDROPPEDWIDTH, static_cast<WPARAM>(width), 0);
}

void clsEntryFrame::ShowFields() {
    const ScopeFlag showing(showing_);
    const CatalogueEntry* entry = Entries().Current();
    EnableFields(entry != nullptr);
    for (const TextField& text : kTextFields)
        SetText(Text(text.index), entry ? entry->*text.field : std::string());
    for (const TickField& tick : kTickFields)
        SetComboSelection(Combo(tick.index), entry ? (entry->*tick.field ? 0 : 1) : -1);
    ShowCategories();
}

void clsEntryFrame::ShowCategories() {
    if (kind_ != Kind::Plugins)
        return;
    categories_ = editor_.CategoryItems();
    std::vector<std::string> items;
    std::ranges::transform(categories_, std::back_inserter(items), &CategoryItem::Text);
    SetComboItems(Combo(kCategory), items);
    SetComboSelection(Combo(kCategory), editor_.CategoryItemIndex());
}

/// Without an entry there is nothing that the fields could change.
void clsEntryFrame::EnableFields(bool enabled) const {
    for (const TextField& text : kTextFields)
        EnableWindow(Text(text.index), enabled);
    for (const int combo : {kEnabled, kLocked, kCategory})
        EnableWindow(Combo(combo), enabled);
    EnableControl(GetDlgItem(dialog_, IdsOf(kind_).browse), enabled, Combo(kSelector));
}

void clsEntryFrame::EnableButtons() const {
    const FrameIds ids = IdsOf(kind_);
    const auto button = [this](int id) { return GetDlgItem(dialog_, id); };
    EnableControl(button(ids.remove), Entries().CanRemove(), button(ids.add));
    EnablePair(button(ids.up), Entries().CanMoveUp(), button(ids.down), Entries().CanMoveDown(),
               button(ids.add));
}

void clsEntryFrame::GoTo(std::size_t index) {
    Entries().Select(static_cast<int>(index));
    Show();
    SendMessageA(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Text(kName)), TRUE);
}

std::string clsEntryFrame::PlaceText() const {
    const clsEntryEditor& entries = Entries();
    return std::to_string(entries.Selected() + 1) + " of " +
           std::to_string(entries.Entries().size());
}

bool clsEntryFrame::Do(Action action) {
    bool moved = false;
    switch (action) {
    case Action::Add:
        Entries().Add();
        GoTo(Entries().Entries().size() - 1);
        return false;
    case Action::Remove:
        Remove();
        break;
    case Action::Browse:
        Browse();
        break;
    case Action::MoveUp:
        moved = Entries().MoveUp();
        break;
    case Action::MoveDown:
        moved = Entries().MoveDown();
        break;
    }
    Show();
    return moved;
}

void clsEntryFrame::Remove() {
    const auto prompt = Entries().PromptForRemoval();
    if (!prompt)
        return;
    const UINT style = prompt->asksYesNo ? MB_YESNO | MB_ICONQUESTION : MB_OK | MB_ICONINFORMATION;
    if (ShowMessage(dialog_, prompt->text, prompt->title, style) == IDYES)
        Entries().Remove();
}

void clsEntryFrame::Browse() {
    std::string path = frmBrowse(dialog_).ChooseFile(kFileTitle, "*.zip;*.cab", programPath_);
    if (!path.empty())
        path = BroughtHere(path);
    if (path.empty())
        return;
    const std::string crc = [&] {
        const clsWaitCursor wait;
        return clsCRC().CalculateFile(path, LetWindowsPaint);
    }();
    if (crc.empty())
        ShowMessage(dialog_, path + "\r\nis empty or cannot be read: it has no checksum.",
                    kFileTitle, MB_OK | MB_ICONWARNING);
    TakeSha256(path);
    Entries().TakeArchive(path, crc);
}

/// Notes the archive's SHA-256 where the program folder has a list of them.
void clsEntryFrame::TakeSha256(const std::string& path) const {
    if (!EqualNoCase(WithTrailingBackslash(ParentOf(path)), programPath_))
        return;
    try {
        const clsWaitCursor wait;
        UpdateSha256List(programPath_, FileNameOf(path), LetWindowsPaint);
    } catch (const Failure& failure) {
        ShowMessage(dialog_,
                    std::string("The archive's SHA-256 could not be recorded: ") + failure.what() +
                        ".",
                    kFileTitle, MB_OK | MB_ICONWARNING);
    }
}

/// A build finds archives in the program folder only: one from elsewhere can be copied there.
/// @return the path to take, or an empty text when the user thinks better of it
std::string clsEntryFrame::BroughtHere(const std::string& path) const {
    if (EqualNoCase(WithTrailingBackslash(ParentOf(path)), programPath_))
        return path;
    std::string here = programPath_ + FileNameOf(path);
    if (!IsPlainArchiveName(FileNameOf(path))) {
        ShowMessage(dialog_, path + "\r\ncannot be an archive: the program itself uses its name.",
                    kFileTitle, MB_OK | MB_ICONWARNING);
        return {};
    }
    const std::string replaced =
        FileExists(here) ? "\r\nThe file of that name that is there now will be replaced." : "";
    const int answer =
        ShowMessage(dialog_,
                    path +
                        "\r\nis not in the program folder, where a build looks for it. Copy it "
                        "there ?" +
                        replaced,
                    kFileTitle, MB_YESNOCANCEL | MB_ICONQUESTION);
    if (answer == IDNO)
        return path;
    if (answer != IDYES)
        return {};
    const clsWaitCursor wait;
    CopyCompleteFile(path, here, LetWindowsPaint); // a failure is shown by the dialog
    return here;
}

bool clsEntryFrame::HandleField(int id, int notification) {
    if (showing_)
        return false;
    const FrameIds ids = IdsOf(kind_);
    if (notification == EN_CHANGE)
        return HandleText(id - ids.text);
    // A list that is closed with Escape goes back to its item without a word about that change.
    if (notification == CBN_SELCHANGE || notification == CBN_CLOSEUP)
        return HandleCombo(id - ids.combo);
    return false;
}

bool clsEntryFrame::HandleText(int index) {
    const auto* found = std::ranges::find(kTextFields, index, &TextField::index);
    if (found == kTextFields.end())
        return false;
    Entries().SetField(found->field, TextOf(Text(index)));
    if (index == kName && Entries().Current())
        ShowName();
    return true;
}

/// Shows the selected entry's new name in the selector.
void clsEntryFrame::ShowName() const {
    const HWND selector = Combo(kSelector);
    const auto selected = static_cast<WPARAM>(Entries().Selected());
    SendMessageA(selector, CB_DELETESTRING, selected, 0);
    SendMessageA(selector, CB_INSERTSTRING, selected,
                 reinterpret_cast<LPARAM>(Entries().Current()->name.c_str()));
    SetComboSelection(selector, Entries().Selected());
}

bool clsEntryFrame::HandleCombo(int index) {
    if (index < kSelector || index > kCategory)
        return false;
    const int item = ComboSelection(Combo(index));
    if (item < 0)
        return false;
    if (index == kSelector) {
        if (item != Entries().Selected()) {
            Entries().Select(item);
            ShowFields();
        }
    } else if (index == kCategory) {
        // By the items that are shown: a key that no category has stays among them, so that the
        // user can come back to it.
        Entries().SetField(&CatalogueEntry::cat,
                           categories_.at(static_cast<std::size_t>(item)).key);
    } else {
        const auto* tick = std::ranges::find(kTickFields, index, &TickField::index);
        Entries().SetField(tick->field, item == 0);
    }
    return true;
}

} // namespace vesk
