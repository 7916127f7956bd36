#include "ui/frmSetup.h"

#include "base/modFile.h"
#include "base/modSpecialFolder.h"
#include "catalogue/modCatalogueFile.h"
#include "ui/ScopeFlag.h"
#include "ui/frmCheck.h"
#include "ui/modBand.h"
#include "ui/resources/ids.h"

#include <commctrl.h>

#include <algorithm>
#include <array>

namespace vesk {

namespace {

constexpr const char* kTitle = "Plugin Setup";
constexpr UINT_PTR kTimer1 = 1;
constexpr UINT kTipDelay = 250; // milliseconds: the system hides a tip while a button is clicked

using Action = clsEntryFrame::Action;

/// What the buttons of the entries do, by their index in the control array.
struct EntryButton {
    clsEntryFrame::Kind frame;
    Action action;
};
constexpr auto kBase = clsEntryFrame::Kind::BaseComponents;
constexpr auto kPlugin = clsEntryFrame::Kind::Plugins;
constexpr std::array<EntryButton, 10> kEntryButtons{{{kBase, Action::Add},
                                                     {kBase, Action::Remove},
                                                     {kBase, Action::Browse},
                                                     {kPlugin, Action::Add},
                                                     {kPlugin, Action::Remove},
                                                     {kPlugin, Action::Browse},
                                                     {kBase, Action::MoveUp},
                                                     {kBase, Action::MoveDown},
                                                     {kPlugin, Action::MoveUp},
                                                     {kPlugin, Action::MoveDown}}};

constexpr std::array<int, 3> kActionIds{IDC_CMD_APPLY, IDC_CMD_DISCARD, IDCANCEL};

Catalogue Load(const std::string& programPath, std::string& unread) {
    Catalogue catalogue;
    unread = LoadCatalogueReporting(programPath, catalogue).sentence;
    // Without a file the user begins an empty catalogue.
    if (!FileExists(programPath + kCatalogueFileName))
        unread.clear();
    return catalogue;
}

} // namespace

frmSetup::frmSetup(const ProgramPaths& paths)
    : paths_(paths),
      editor_(Load(paths.programPath, unread_)),
      baseFrame_(kBase, editor_, paths.programPath),
      pluginFrame_(kPlugin, editor_, paths.programPath),
      logoSmall_(IDR_LOGO_SMALL) {}

void frmSetup::Show() {
    Create(nullptr, IDD_SETUP);
    ShowWindow(Window(), SW_SHOW);
    SetForegroundWindow(Window());
    if (!unread_.empty())
        ShowMessage(Window(),
                    unread_ + ".\r\n\r\nOnly what could be read is shown. Apply would write the "
                              "file without the rest.",
                    kTitle, MB_OK | MB_ICONWARNING);
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
    ShowAll();
    CenterWindow(Window());
    SetFocus(Control(IDC_CMB_BASE));
}

void frmSetup::AddTips() {
    for (std::size_t index = 0; index < kEntryButtons.size(); ++index) {
        const Action action = kEntryButtons.at(index).action;
        if (action == Action::MoveUp || action == Action::MoveDown)
            tips_.Add(IDC_CMD_BUTTONS + static_cast<int>(index), LPSTR_TEXTCALLBACKA);
    }
    tips_.Add(IDC_TXT_FOLDER, "Name of the folder that a build makes in the installation path");
    tips_.Add(IDC_CMD_CHECK, "Lists what would go wrong in a build");
    tips_.Add(IDC_CMD_APPLY, "Writes the catalogue file");
    tips_.Add(IDC_CMD_DISCARD, "Drops all edits since the last Apply");
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
}

bool frmSetup::Apply() {
    try {
        const WaitCursor wait;
        editor_.Apply(
            [this](const Catalogue& catalogue) { SaveCatalogue(paths_.programPath, catalogue); });
    } catch (const std::exception& failure) {
        ShowMessage(Window(), std::string("The catalogue could not be saved.\r\n") + failure.what(),
                    kTitle, MB_OK | MB_ICONERROR);
        return false;
    }
    ShowAll();
    ShowState("Saved.");
    return true;
}

void frmSetup::Discard() {
    editor_.Revert();
    ShowAll();
    ShowState("Edits dropped.");
}

bool frmSetup::MayLeave() {
    if (!editor_.IsModified())
        return true;
    switch (ShowMessage(Window(), "Save the edits to the catalogue before leaving ?", kTitle,
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
    const EntryButton& button = kEntryButtons.at(static_cast<std::size_t>(index));
    clsEntryFrame& frame = button.frame == kPlugin ? pluginFrame_ : baseFrame_;
    if (frame.Do(button.action)) {
        movedBy_ = Control(IDC_CMD_BUTTONS + index);
        SetTimer(Window(), kTimer1, kTipDelay, nullptr);
    }
    ShowState("");
}

/// Who moves entries with the mouse is told where they are by now.
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
        (void)Apply(); // a failure was told
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
        const WaitCursor wait;
        check = CheckCatalogue(editor_.Edited(), ArchivesIn(paths_.programPath));
    }
    if (const auto place = frmCheck(std::move(check)).Show(Window()))
        (place->list == EntryList::Plugins ? pluginFrame_ : baseFrame_).GoTo(place->index);
}

bool frmSetup::OnField(int id, int notification) {
    if (showing_)
        return false;
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
    const int entryButton = id - IDC_CMD_BUTTONS;
    if (entryButton >= 0 && entryButton < static_cast<int>(kEntryButtons.size()))
        return cmdButtons_Click(entryButton);
    if (id == IDC_CMD_CHECK)
        return cmdCheck_Click();
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
    const int id = GetDlgCtrlID(reinterpret_cast<HWND>(header.idFrom));
    const auto index = static_cast<std::size_t>(id - IDC_CMD_BUTTONS);
    if (index >= kEntryButtons.size())
        return;
    const bool plugins = kEntryButtons.at(index).frame == kPlugin;
    tipText_ = (plugins ? pluginFrame_ : baseFrame_).PlaceText();
    reinterpret_cast<NMTTDISPINFOA&>(header).lpszText = tipText_.data();
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
    case WM_CLOSE:
        Form_QueryUnload();
        return TRUE;
    case WM_QUERYENDSESSION:
        return Answer(IsWindowEnabled(Window()) && MayLeave());
    case WM_DESTROY:
        PostQuitMessage(0);
        return TRUE;
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
        logoSmall_.Paint(item.hDC, item.rcItem);
        return TRUE;
    }
    default:
        return FALSE;
    }
}

} // namespace vesk
