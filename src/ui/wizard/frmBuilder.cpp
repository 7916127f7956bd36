#include "ui/wizard/frmBuilder.h"

#include "base/Version.h"
#include "base/modFile.h"
#include "base/modSystemError.h"
#include "ui/kit/modBand.h"
#include "ui/kit/modContrast.h"
#include "ui/kit/modProgramVersion.h"
#include "ui/resources/ids.h"
#include "ui/wizard/clsBuildGate.h"
#include "ui/wizard/clsWizardBuild.h"
#include "ui/wizard/frmProblems.h"
#include "ui/wizard/modWizardText.h"
#include "ui/wizard/pagBaseComponents.h"
#include "ui/wizard/pagBuild.h"
#include "ui/wizard/pagPlugins.h"
#include "ui/wizard/pagSummary.h"
#include "ui/wizard/pagWelcome.h"

#include <array>
#include <initializer_list>
#include <utility>

namespace vesk {

namespace {

constexpr std::array<int, 4> kButtonIds{IDC_CMD_HELP, IDC_CMD_BACK, IDC_CMD_NEXT, IDCANCEL};

} // namespace

frmBuilder::frmBuilder(ProgramPaths paths)

    : paths_(std::move(paths)), logo_(IDR_LOGO), logoSmall_(IDR_LOGO_SMALL) {}

frmBuilder::~frmBuilder() = default;

void frmBuilder::Show(const std::string& buttonFace) {
    Create(nullptr, IDD_BUILDER);
    if (!buttonFace.empty())
        SetButtonFace(buttonFace);
    ShowWindow(Window(), SW_SHOW);
    SetForegroundWindow(Window());
    ExplainCatalogue();
}

void frmBuilder::SetButtonFace(const std::string& face) {
    auto* const font = reinterpret_cast<HFONT>(SendMessageA(Window(), WM_GETFONT, 0, 0));
    buttonFont_ = FontInFace(font, face);
    for (const int id : kButtonIds)
        SendMessageA(Control(id), WM_SETFONT, reinterpret_cast<WPARAM>(buttonFont_.Get()), TRUE);
}

/// Also when the resolution has changed: the next page's heading is to have them.
void frmBuilder::MakeFonts() {
    largeFont_ = DerivedFont(FontOf(Window()), FW_BOLD, 145);
    boldFont_ = DerivedFont(FontOf(Window()), FW_BOLD, 100);
}

void frmBuilder::Form_Load() {
    load_ = LoadCatalogueReporting(paths_.programPath, catalogue_);
    SetWindowIcon(Window());
    MakeFonts();
    SendMessageA(Control(IDC_LBL_HEADING_SM), WM_SETFONT, reinterpret_cast<WPARAM>(boldFont_.Get()),
                 FALSE);
    welcomePage_ = std::make_unique<pagWelcome>(Window());
    FollowSize();
    AddPage(Page::Welcome);
    const auto stored = ResourceBytes("TXT", IDR_WELCOME_TEXT);
    welcomePage_->SetWelcomeText(
        WelcomeText(kVersionText, LegalNotice(),
                    std::string(reinterpret_cast<const char*>(stored.data()), stored.size())));
    GoTo(Page::Welcome);
    CenterWindow(Window());
    SetFocus(Control(IDC_CMD_NEXT));
}

/// The wizard opens with what was read; where that is not enough to build from, it offers the way
/// to a catalogue.
void frmBuilder::ExplainCatalogue() {
    if (CatalogueRefusal(catalogue_, true).empty()) {
        if (!load_.sentence.empty())
            ShowMessage(Window(), load_.sentence, kProductName, MB_OK | MB_ICONERROR);
        return;
    }
    const std::string found =
        load_.fault.empty() ? "The catalogue names no base component" : load_.fault;
    const int answer = ShowMessage(
        Window(),
        found + ".\r\n\r\nThere is nothing to build without a catalogue. Do you want to "
                "make one in the catalogue editor now?",
        kProductName, MB_YESNO | MB_ICONWARNING);
    wantsEditor_ = answer == IDYES;
    if (wantsEditor_)
        DestroyWindow(Window());
}

void frmBuilder::FollowSize() {
    layout_.Attach(Window());
    const auto follow = [this](unsigned how, std::initializer_list<int> ids) {
        for (const int id : ids)
            layout_.Add(Control(id), how);
    };
    follow(clsLayout::kGrowY, {IDC_IMG_LOGO});
    follow(clsLayout::kGrowX, {IDC_LINE_TOP, IDC_LBL_HEADING_SM2});
    follow(clsLayout::kMoveX, {IDC_IMG_LOGO_SMALL});
    follow(clsLayout::kGrowX | clsLayout::kMoveY, {IDC_LINE_BOTTOM});
    follow(clsLayout::kMoveY, {IDC_CMD_HELP, IDC_CMD_PROBLEMS});
    follow(clsLayout::kMoveX | clsLayout::kMoveY, {IDC_CMD_BACK, IDC_CMD_NEXT, IDCANCEL});
}

/// In the order of the Tab key: each page is put before the wizard's own buttons.
void frmBuilder::AddPage(Page page) {
    const HWND window = PageWindow(page).Window();
    layout_.Add(window, clsLayout::kGrowX | clsLayout::kGrowY);
    SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
}

/// The pages behind the first one, when they are about to be shown: they make a third of the
/// program's start.
void frmBuilder::CreatePages() {
    if (buildPage_)
        return;
    basePage_ =
        std::make_unique<pagBaseComponents>(Window(), catalogue_, source_, paths_.programPath);
    pluginsPage_ = std::make_unique<pagPlugins>(Window(), catalogue_, paths_.programPath);
    summaryPage_ = std::make_unique<pagSummary>(Window());
    buildPage_ = std::make_unique<pagBuild>(Window(), log_, paths_.programPath);
    gate_ =
        std::make_unique<clsBuildGate>(paths_.programPath, catalogue_, load_, source_, *basePage_);
    build_ = std::make_unique<clsWizardBuild>(
        Window(), paths_.programPath, log_, *buildPage_,
        [this](const BuildOutcome& outcome) { OnBuildEnded(outcome); });
    for (const Page page : {Page::BaseComponents, Page::Plugins, Page::Summary, Page::Build})
        AddPage(page);
    layout_.OnSize(); // the window may have another size by now
}

clsDialog& frmBuilder::PageWindow(Page page) {
    switch (page) {
    case Page::BaseComponents:
        return *basePage_;
    case Page::Plugins:
        return *pluginsPage_;
    case Page::Summary:
        return *summaryPage_;
    case Page::Build:
        return *buildPage_;
    case Page::Welcome:
        break;
    }
    return *welcomePage_;
}

RECT frmBuilder::DialogUnits(int left, int top, int width, int height) const {
    RECT area{left, top, left + width, top + height};
    MapUnits(Window(), area);
    return area;
}

void frmBuilder::ShowControl(int id, bool shown) const {
    ShowWindow(Control(id), shown ? SW_SHOW : SW_HIDE);
}

void frmBuilder::GoTo(Page page) {
    if (page != Page::Welcome)
        CreatePages();
    if (page == Page::Summary)
        ShowSummary();
    page_ = page;
    ShowHeading(page);
    ShowPageWindow(page);
    EnableWindow(Control(IDC_CMD_BACK), NextStep(page, WizardButton::Back) != NavigationStep{});
    if (IsWindowVisible(Window()))
        FocusPage();
}

void frmBuilder::ShowHeading(Page page) {
    const bool welcome = page == Page::Welcome;
    const bool build = page == Page::Build;
    const HWND heading = Control(IDC_LBL_HEADING);
    const RECT area = welcome ? DialogUnits(122, 12, 244, 24) : DialogUnits(11, 6, 300, 10);
    const GdiHandle& font = welcome ? largeFont_ : boldFont_;
    SendMessageA(heading, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), FALSE);
    SetWindowPos(heading, nullptr, area.left, area.top, area.right - area.left,
                 area.bottom - area.top, SWP_NOZORDER | SWP_NOACTIVATE);
    SetText(build ? Control(IDC_LBL_HEADING_SM) : heading, PageHeading(page, kVersionText));
    SetText(Control(build ? IDC_LBL_HEADING_SM2 : IDC_LBL_SUBHEADING), PageSubheading(page));

    ShowControl(IDC_IMG_LOGO, welcome);
    ShowControl(IDC_LBL_HEADING, !build);
    ShowControl(IDC_LBL_SUBHEADING, !welcome && !build);
    ShowControl(IDC_IMG_LOGO_SMALL, !welcome);
    ShowControl(IDC_LINE_TOP, !welcome);
    ShowControl(IDC_LBL_HEADING_SM, build);
    ShowControl(IDC_LBL_HEADING_SM2, build);
}

void frmBuilder::ShowPageWindow(Page page) {
    const HWND shown = PageWindow(page).Window();
    ShowWindow(shown, SW_SHOW);
    for (const Page other :
         {Page::Welcome, Page::BaseComponents, Page::Plugins, Page::Summary, Page::Build}) {
        if (other != page && buildPage_)
            ShowWindow(PageWindow(other).Window(), SW_HIDE);
    }
    RedrawWindow(Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

/// Gives the keyboard to the first thing to be decided on a page.
void frmBuilder::FocusPage() {
    const bool decides = page_ == Page::BaseComponents || page_ == Page::Plugins;
    const HWND target = decides ? GetNextDlgTabItem(PageWindow(page_).Window(), nullptr, FALSE)
                                : Control(IDC_CMD_NEXT);
    SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(target), TRUE);
    // A page's own push buttons must not stay the default.
    SendMessageA(Window(), DM_SETDEFID, IDC_CMD_NEXT, 0);
}

void frmBuilder::cmdButtons_Click(WizardButton button) {
    if (basePage_)
        basePage_->CommitSource();
    const NavigationStep step = NextStep(page_, button);
    switch (step.kind) {
    case NavigationStep::Kind::Nothing:
        return;
    case NavigationStep::Kind::ShowHelp:
        return ShowHelp();
    case NavigationStep::Kind::GoToPage:
        if (step.page == Page::Plugins && page_ == Page::BaseComponents && !AcceptInstallFolder())
            return;
        return GoTo(step.page);
    case NavigationStep::Kind::StartBuild:
        return StartBuild();
    case NavigationStep::Kind::ClearBusyAndClose:
        closing_.busy = false;
        return Form_QueryUnload();
    case NavigationStep::Kind::Close:
        return Form_QueryUnload();
    }
}

void frmBuilder::Form_QueryUnload() {
    const ClosingAnswer answer = AnswerClosing(closing_);
    if (answer == ClosingAnswer::Refuse || (answer == ClosingAnswer::Ask && !ConfirmExit()))
        return;
    DestroyWindow(Window());
}

bool frmBuilder::ConfirmExit() {
    closing_.exitConfirmed = ShowMessage(Window(), "Are you sure you want to exit the setup ?\r\n",
                                         "Confirm Action", MB_YESNO | MB_ICONQUESTION) == IDYES;
    return closing_.exitConfirmed;
}

void frmBuilder::ShowHelp() {
    constexpr UINT kContents = 3;
    const std::string helpFile = paths_.programPath + "veskbuilder.hlp";
    if (!FileExists(helpFile)) {
        ShowMessage(Window(),
                    "Unable to display Help Contents. There is no Help associated with this "
                    "program.",
                    "Help", MB_OK | MB_ICONINFORMATION);
    } else if (!WinHelpA(Window(), helpFile.c_str(), kContents, 0)) {
        ShowMessage(Window(), SystemErrorText(GetLastError()), "Help", MB_OK);
    }
}

void frmBuilder::OnCommand(int id) {
    if (id == IDC_CMD_PROBLEMS)
        return frmProblems(build_->Problems()).Show(Window());
    for (std::size_t index = 0; index < kButtonIds.size(); ++index) {
        // Escape arrives as a click on Cancel, also while that button is disabled.
        if (kButtonIds[index] == id && IsWindowEnabled(Control(id)))
            return cmdButtons_Click(static_cast<WizardButton>(index));
    }
}

/// The welcome page is white down to the line above the buttons.
INT_PTR frmBuilder::PaintBackground(HDC dc) const {
    return Answer(page_ == Page::Welcome
                      ? PaintBandTo(Window(), dc, AreaOf(Control(IDC_LINE_BOTTOM)).top)
                      : PaintBand(Window(), dc, kBandHeight));
}

INT_PTR frmBuilder::ColourOf(HDC dc, HWND control) {
    const int id = GetDlgCtrlID(control);
    if (id < IDC_LBL_HEADING || id > IDC_LBL_HEADING_SM2)
        return FALSE;
    return OnWhite(dc);
}

INT_PTR frmBuilder::DrawPicture(const DRAWITEMSTRUCT& item) {
    if (item.CtlID == IDC_IMG_LOGO)
        logo_.Paint(item.hDC, item.rcItem);
    else if (IsDark(GetSysColor(COLOR_WINDOW)))
        FillRect(item.hDC, &item.rcItem, GetSysColorBrush(COLOR_WINDOW)); // it is drawn on white
    else
        logoSmall_.Paint(item.hDC, item.rcItem);
    return TRUE;
}

void frmBuilder::Refuse(const FolderRefused& refusal) const {
    ShowMessage(Window(), refusal.what(), kProductName, MB_OK | MB_ICONWARNING);
}

/// Before the page with the installation folder is left for the next one.
bool frmBuilder::AcceptInstallFolder() {
    try {
        basePage_->ShowInstallFolder(gate_->LookAtFolder().folder.Path());
        return true;
    } catch (const FolderRefused& refusal) {
        Refuse(refusal);
        basePage_->FocusInstallFolder();
        return false;
    }
}

void frmBuilder::ShowSummary() {
    summaryPage_->SetSummary(SummaryText(
        {catalogue_, basePage_->InstallFolder(), basePage_->SourceFolder(), source_.valid}));
    std::string warning;
    try {
        warning = gate_->WarningOf(gate_->LookAtFolder());
    } catch (const FolderRefused& refusal) {
        warning = refusal.what(); // the disk has changed since the folder was accepted
    }
    summaryPage_->SetWarning(warning);
}

/// A foreign folder is emptied only after the user was told what is in it.
BuildInputs frmBuilder::CollectInputs() {
    const ChosenFolder chosen = gate_->LookAtFolder();
    const std::string warning = gate_->WarningOf(chosen);
    if (warning != summaryPage_->Warning()) {
        summaryPage_->SetWarning(warning);
        throw FolderRefused("What is to be told of this build has changed: " +
                            chosen.folder.Path() + ". Look at this page again before you go on.");
    }
    return gate_->InputsFor(chosen);
}

bool frmBuilder::AcceptsPartialCatalogue() {
    return load_.state == CatalogueState::Whole ||
           ShowMessage(
               Window(),
               "The catalogue was read only in part: " + load_.sentence +
                   "\r\n\r\nWhat was not read is not in the build. Do you want to build all "
                   "the same?",
               kProductName, MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2) == IDYES;
}

/// Everything that can speak against a build does so before anything is changed.
bool frmBuilder::PrepareBuild() {
    try {
        const BuildInputs inputs = CollectInputs();
        if (!AcceptsPartialCatalogue())
            return false;
        build_->Prepare(inputs, catalogue_);
        return true;
    } catch (const FolderRefused& refusal) {
        Refuse(refusal);
        return false;
    }
}

void frmBuilder::StartBuild() {
    if (!PrepareBuild())
        return;
    closing_.busy = true;
    ShowHeading(Page::Build);
    ShowPageWindow(Page::Build);
    EnableButtons(false);
    buildPage_->FocusLog();
    // The click ends before the run begins: nothing of the button's handling waits for its end.
    PostMessageA(Window(), kRunBuildMessage, 0, 0);
}

/// Cancel is enabled again with the others although a click on it does nothing here: so it has
/// been since the first version.
void frmBuilder::EnableButtons(bool enabled) {
    for (const int id : {IDC_CMD_HELP, IDC_CMD_NEXT, IDCANCEL})
        EnableWindow(Control(id), enabled);
    EnableWindow(Control(IDC_CMD_BACK), FALSE);
}

void frmBuilder::OnBuildEnded(const BuildOutcome& outcome) {
    page_ = Page::Build;
    closing_.busy = false;
    closing_.finished = true;
    const std::size_t problems = build_->Problems().size();
    const EndingHeading heading = HeadingOf(outcome);
    SetText(Control(IDC_LBL_HEADING_SM), heading.title);
    SetText(Control(IDC_LBL_HEADING_SM2), heading.sentence);
    SetText(Control(IDC_CMD_PROBLEMS), "&Problems (" + std::to_string(problems) + ")...");
    ShowControl(IDC_CMD_PROBLEMS, problems > 0);
    EnableButtons(true);
    SetText(Control(IDC_CMD_NEXT), "&Finish");
    SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(IDC_CMD_NEXT)), TRUE);
}

INT_PTR frmBuilder::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        Form_Load();
        return FALSE; // the keyboard is where Form_Load put it
    case WM_COMMAND:
        OnCommand(LOWORD(wparam));
        return TRUE;
    case WM_HELP: // the F1 key
        if (IsWindowEnabled(Control(IDC_CMD_HELP)))
            ShowHelp();
        return TRUE;
    case WM_SIZE:
        layout_.OnSize();
        return TRUE;
    case WM_GETMINMAXINFO:
        layout_.LimitSize(*reinterpret_cast<MINMAXINFO*>(lparam));
        return TRUE;
    case WM_CLOSE:
        Form_QueryUnload();
        return TRUE;
    case WM_QUERYENDSESSION:
        return Answer(AnswerClosing(closing_) != ClosingAnswer::Refuse);
    case WM_DESTROY:
        PostQuitMessage(0);
        return TRUE;
    case WM_ERASEBKGND:
        return PaintBackground(reinterpret_cast<HDC>(wparam));
    case WM_CTLCOLORSTATIC:
        return ColourOf(reinterpret_cast<HDC>(wparam), reinterpret_cast<HWND>(lparam));
    case WM_DRAWITEM:
        return DrawPicture(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
    case kRunBuildMessage:
        build_->Run();
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace vesk
