#include "ui/editor/frmSetup.h"

#include "archive/clsCRC.h"
#include "base/ScopeFlag.h"
#include "base/modSpecialFolder.h"
#include "catalogue/modCatalogueFile.h"
#include "catalogue/modCategoryCaption.h"
#include "catalogue/modFolderCheck.h"
#include "ui/editor/frmCategories.h"
#include "ui/editor/frmCheck.h"
#include "ui/editor/modSaveCheck.h"
#include "ui/kit/clsWaitCursor.h"
#include "ui/kit/modBand.h"
#include "ui/kit/modBoxText.h"
#include "ui/kit/modEnable.h"
#include "ui/resources/ids.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <utility>

namespace vesk {

namespace {

constexpr const char* kSetupTitle = "Plugin Setup";
constexpr UINT_PTR kTimer1 = 1;
constexpr UINT kTipDelay = 250; // milliseconds: the system hides a tip while a button is clicked

constexpr std::array<int, 3> kActionIds{IDC_CMD_APPLY, IDC_CMD_DISCARD, IDCANCEL};

Catalogue Load(clsEditedFile& file, CatalogueLoad& load) {
    Catalogue catalogue;
    load = file.Load(catalogue);
    return catalogue;
}

} // namespace

frmSetup::frmSetup(const ProgramPaths& paths, bool told)
    : paths_(paths),
      file_(paths.programPath),
      told_(told),
      editor_(Load(file_, load_)),
      baseFrame_(EntryList::BaseComponents, editor_, paths.programPath),
      pluginFrame_(EntryList::Plugins, editor_, paths.programPath),
      logoSmall_(IDR_LOGO_SMALL) {}

void frmSetup::Show() {
    Create(nullptr, IDD_SETUP);
    ShowWindow(Window(), SW_SHOW);
    SetForegroundWindow(Window());
    if (file_.HoldsNothing())
        BeginFromNothing();
    else if (!load_.fault.empty())
        ExplainCatalogue();
}

/// Who has no catalogue yet need not know which archive a build begins with, and which categories
/// PE Builder's own plug-ins expect. Nothing is written before Apply.
void frmSetup::BeginFromNothing() {
    Catalogue beginning = BeginnersCatalogue(CategoryCaption);
    for (CatalogueEntry& entry : beginning.baseComponents)
        entry.crc = clsCRC().CalculateFile(paths_.programPath + entry.zip, LetWindowsPaint);
    editor_.Offer(beginning);
    ShowAll();
    ShowState("");
    SetText(Control(IDC_LBL_STATE), "A new catalogue, not saved yet.");
}

void frmSetup::ExplainCatalogue() const {
    const char* const advice = "Only what could be read is shown. Apply asks before it overwrites "
                               "the rest.";
    if (told_)
        SetText(Control(IDC_LBL_STATE), "Not all of the file could be read.");
    else
        ShowMessage(Window(), load_.fault + ".\r\n\r\n" + advice, kSetupTitle,
                    MB_OK | MB_ICONWARNING);
}

void frmSetup::Form_Load() {
    SetWindowIcon(Window());
    auto* const font = reinterpret_cast<HFONT>(SendMessageA(Window(), WM_GETFONT, 0, 0));
    headingFont_ = DerivedFont(font, FW_BOLD, 100);
    SendMessageA(Control(IDC_LBL_SETUP_HEADING), WM_SETFONT,
                 reinterpret_cast<WPARAM>(headingFont_.Get()), FALSE);
    tips_.Attach(Window());
    baseFrame_.Attach(Window(), tips_);
    pluginFrame_.Attach(Window(), tips_);
    AddTips();
    SetComboItems(
        Control(IDC_CMB_INSTALL_PATH),
        clsCatalogueEditor::InstallPathItems(SpecialFolderPath(SpecialFolder::ProgramFiles)));
    MatchHeight(Control(IDC_CMB_INSTALL_PATH), Control(IDC_TXT_FOLDER));
    FollowSize();
    ShowAll();
    ShowState("");
    CenterWindow(Window());
    SetFocus(Control(IDC_CMB_BASE));
}

/// Long names and addresses get the room that the window gains. Combo boxes keep theirs: with a new
/// size they forget the height of their lists.
void frmSetup::FollowSize() {
    layout_.Attach(Window());
    constexpr int kAddress = 4;
    constexpr int kChecksum = 5;
    layout_.Follow(clsLayout::kGrowX,
                   {IDC_LINE_SETUP_TOP, IDC_LINE_SETUP_BOTTOM, IDC_FRA_BASE, IDC_FRA_PLUGIN,
                    IDC_FRA_INSTALL, IDC_TXT_BASE, IDC_TXT_BASE + kAddress,
                    IDC_TXT_BASE + kChecksum, IDC_TXT_BASE_PLUGIN, IDC_TXT_BASE_PLUGIN + kAddress,
                    IDC_TXT_BASE_PLUGIN + kChecksum, IDC_LBL_STATE});
    layout_.Follow(clsLayout::kMoveX,
                   {IDC_IMG_SETUP_LOGO, IDC_CMD_APPLY, IDC_CMD_DISCARD, IDCANCEL});
    for (const EntryButton& button : EntryButtons()) {
        if (button.action != EntryAction::Browse)
            layout_.Follow(clsLayout::kMoveX, {EntryButtonId(button.list, button.action)});
    }
}

void frmSetup::AddTips() {
    for (const EntryList list : {EntryList::BaseComponents, EntryList::Plugins}) {
        for (const EntryAction action : {EntryAction::MoveUp, EntryAction::MoveDown})
            tips_.Add(EntryButtonId(list, action), LPSTR_TEXTCALLBACKA);
    }
    tips_.Add(IDC_TXT_FOLDER, "Name of the folder that a build makes in the installation path");
    tips_.Add(IDC_CMD_CHECK, "Lists what would go wrong in a build");
    tips_.Add(IDC_CMD_CATEGORIES, "What the plug-in folder is divided into");
    tips_.Add(IDC_CMD_APPLY, "Writes the catalogue file");
    tips_.Add(IDC_CMD_DISCARD, "Discards all edits since the last Apply");
}

void frmSetup::ShowAll() {
    const ScopeFlag showing(showing_);
    baseFrame_.Show();
    pluginFrame_.Show();
    SetText(Control(IDC_TXT_FOLDER), editor_.InstallFolder());
    SetComboSelection(Control(IDC_CMB_INSTALL_PATH), editor_.InstallPathItem());
}

void frmSetup::ShowState(const std::string& whenUnchanged) {
    SetText(Control(IDC_LBL_STATE),
            editor_.IsModified() ? "There are unsaved edits." : whenUnchanged);
    EnableWhatWorks();
}

void frmSetup::EnableWhatWorks() {
    baseFrame_.EnableButtons();
    pluginFrame_.EnableButtons();
    const bool modified = editor_.IsModified();
    // A damaged file can be saved as it is shown, without an edit.
    const bool maySave = modified || !file_.IsWhole();
    const HWND heir = lastField_ && IsWindowEnabled(lastField_) ? lastField_ : Control(IDCANCEL);
    // The caret is to stay where it was: not through WM_NEXTDLGCTL, which selects the whole text.
    if ((!maySave && GetFocus() == Control(IDC_CMD_APPLY)) ||
        (!modified && GetFocus() == Control(IDC_CMD_DISCARD)))
        SetFocus(heir);
    EnableControl(Control(IDC_CMD_APPLY), maySave, heir);
    EnableControl(Control(IDC_CMD_DISCARD), modified, heir);
}

void frmSetup::GoTo(const EntryPlace& place) {
    FrameOf(place.list).GoTo(place.index);
}

/// Nothing that the user typed may be lost in silence: tells what the file would not give back, and
/// shows it. @return false when there is nothing
bool frmSetup::RefuseWhatIsLost() {
    const auto lost = LostBySaving(editor_.Edited());
    if (!lost)
        return false;
    ShowMessage(Window(), "The catalogue is not saved.\r\n\r\n" + LostText(*lost), kSetupTitle,
                MB_OK | MB_ICONWARNING);
    if (lost->place)
        GoTo(*lost->place);
    return true;
}

bool frmSetup::Apply() {
    if (RefuseWhatIsLost())
        return false;
    const std::string loss = file_.LossBySaving();
    if (!loss.empty() && ShowMessage(Window(), loss, kSetupTitle,
                                     MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2) != IDYES)
        return false;
    try {
        const clsWaitCursor wait;
        editor_.Apply([this](const Catalogue& catalogue) { file_.Save(catalogue); });
    } catch (const std::exception& failure) {
        ShowMessage(Window(), "The catalogue could not be saved.\r\n" + AsSentence(failure.what()),
                    kSetupTitle, MB_OK | MB_ICONERROR);
        return false;
    }
    ShowAll();
    ShowState("Saved.");
    return true;
}

void frmSetup::Discard() {
    editor_.Revert();
    ShowAll();
    ShowState("Edits discarded.");
}

bool frmSetup::MayLeave() {
    if (!editor_.IsModified())
        return true;
    switch (ShowMessage(Window(), "Save the edits to the catalogue before leaving ?", kSetupTitle,
                        MB_YESNOCANCEL | MB_ICONQUESTION)) {
    case IDYES:
        return Apply();
    case IDNO:
        return true;
    default:
        return false;
    }
}

void frmSetup::Form_QueryUnload() {
    // Closed from outside while a message or dialog of its own is open: that one comes first.
    if (IsWindowEnabled(Window()) && MayLeave())
        DestroyWindow(Window());
}

void frmSetup::cmdButtons_Click(int index) {
    const EntryButton& button = EntryButtons()[static_cast<std::size_t>(index)];
    if (FrameOf(button.list).Do(button.action)) {
        movedBy_ = Control(IDC_CMD_BUTTONS + index);
        SetTimer(Window(), kTimer1, kTipDelay, nullptr);
    }
    ShowState("");
}

/// Shows whoever moves entries with the mouse where they are by now.
void frmSetup::ShowPlaceTip() {
    KillTimer(Window(), kTimer1);
    POINT cursor{};
    GetCursorPos(&cursor);
    if (WindowFromPoint(cursor) == movedBy_)
        tips_.ShowNow();
}

void frmSetup::cmdActions_Click(int index) {
    switch (index) {
    case 0:
        (void)Apply(); // a failure was shown
        return;
    case 1:
        return Discard();
    default:
        return Form_QueryUnload();
    }
}

void frmSetup::cmdCheck_Click() {
    CatalogueCheck check;
    {
        const clsWaitCursor wait;
        ExtractionOwner owner;
        owner.progress = [](double) { LetWindowsPaint(); };
        check = CheckWithProgramFolder(paths_.programPath, editor_.Edited(), owner);
    }
    if (const auto place = frmCheck(std::move(check)).Show(Window()))
        GoTo(*place);
}

void frmSetup::cmdCategories_Click() {
    if (!frmCategories(editor_).Show(Window()))
        return;
    pluginFrame_.Show();
    ShowState("");
}

/// No button is the default one: Enter in a field goes on to the next field, and saves nothing.
void frmSetup::OnEnter() {
    SendMessageA(Window(), WM_NEXTDLGCTL, 0, FALSE);
}

bool frmSetup::OnField(int id, int notification) {
    if (notification == EN_SETFOCUS || notification == CBN_SETFOCUS)
        lastField_ = Control(id);
    if (showing_)
        return false;
    if (notification == EN_CHANGE)
        ReplaceForeignLetters(Control(id));
    if (id == IDC_TXT_FOLDER && notification == EN_CHANGE)
        editor_.SetInstallFolder(TextOf(Control(id)));
    else if (id == IDC_CMB_INSTALL_PATH &&
             (notification == CBN_SELCHANGE || notification == CBN_CLOSEUP))
        editor_.SetInstallPathItem(ComboSelection(Control(id)));
    else
        return baseFrame_.HandleField(id, notification) ||
               pluginFrame_.HandleField(id, notification);
    return true;
}

void frmSetup::OnClick(int id) {
    if (EntryButtonOf(id))
        return cmdButtons_Click(id - IDC_CMD_BUTTONS);
    if (id == IDC_CMD_CHECK)
        return cmdCheck_Click();
    if (id == IDC_CMD_CATEGORIES)
        return cmdCategories_Click();
    if (id == IDOK)
        return OnEnter();
    const auto* action = std::ranges::find(kActionIds, id);
    if (action != kActionIds.end())
        cmdActions_Click(static_cast<int>(action - kActionIds.begin()));
}

void frmSetup::OnCommand(int id, int notification) {
    if (OnField(id, notification))
        ShowState("");
    else if (notification == BN_CLICKED)
        OnClick(id);
}

void frmSetup::AnswerTip(NMHDR& header) {
    const auto* const button = EntryButtonOf(GetDlgCtrlID(reinterpret_cast<HWND>(header.idFrom)));
    if (!button)
        return;
    tipText_ = FrameOf(button->list).PlaceText();
    reinterpret_cast<NMTTDISPINFOA&>(header).lpszText = tipText_.data();
}

void frmSetup::LimitSize(MINMAXINFO& info) const {
    layout_.LimitSize(info);
    if (info.ptMinTrackSize.y > 0) // there is nothing that more height would show
        info.ptMaxTrackSize.y = info.ptMinTrackSize.y;
}

INT_PTR frmSetup::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        Form_Load();
        return FALSE; // the keyboard is where Form_Load put it
    case WM_COMMAND:
        OnCommand(LOWORD(wparam), HIWORD(wparam));
        return TRUE;
    case WM_TIMER:
        ShowPlaceTip();
        return TRUE;
    case WM_NOTIFY:
        if (auto& header = *reinterpret_cast<NMHDR*>(lparam); header.code == TTN_GETDISPINFOA)
            AnswerTip(header);
        return FALSE;
    case WM_SIZE:
        layout_.OnSize();
        return TRUE;
    case WM_GETMINMAXINFO:
        LimitSize(*reinterpret_cast<MINMAXINFO*>(lparam));
        return TRUE;
    case WM_CLOSE:
        Form_QueryUnload();
        return TRUE;
    case WM_QUERYENDSESSION:
        return Answer(!editor_.IsModified() || (IsWindowEnabled(Window()) && MayLeave()));
    case WM_DESTROY:
        PostQuitMessage(0);
        return TRUE;
    default:
        return HandlePainting(message, wparam, lparam);
    }
}

/// The white upper part with its texts and its picture.
INT_PTR frmSetup::HandlePainting(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_ERASEBKGND:
        return Answer(PaintBand(Window(), reinterpret_cast<HDC>(wparam), kBandHeight));
    case WM_CTLCOLORSTATIC:
        switch (GetDlgCtrlID(reinterpret_cast<HWND>(lparam))) {
        case IDC_LBL_SETUP_HEADING:
        case IDC_LBL_SETUP_SUBHEADING:
            return OnWhite(reinterpret_cast<HDC>(wparam));
        default:
            return FALSE;
        }
    case WM_DRAWITEM: {
        const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lparam);
        logoSmall_.PaintOnWhite(item.hDC, item.rcItem);
        return TRUE;
    }
    default:
        return FALSE;
    }
}

} // namespace vesk
