#include "ui/wizard/frmBuilder.h"

#include "base/Version.h"
#include "base/modFile.h"
#include "base/modSystemError.h"
#include "ui/kit/modPicture.h"
#include "ui/kit/modVersions.h"
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
#include <cstddef>
#include <utility>

namespace vesk {

namespace {

constexpr std::array<int, 4> kButtonIds{IDC_CMD_HELP, IDC_CMD_BACK, IDC_CMD_NEXT, IDCANCEL};

} // namespace

frmBuilder::frmBuilder(ProgramPaths paths) : paths_(std::move(paths)) {}

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

void frmBuilder::Form_Load() {
    load_ = LoadCatalogueReporting(paths_.programPath, catalogue_);
    // An editor's empty list comes back from its file as one entry without anything in it.
    if (catalogue_.plugins == std::vector<CatalogueEntry>(1))
        catalogue_.plugins.clear();
    SetWindowIcon(Window());
    heading_.Attach(Window());
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
        load_.fault.empty() ? "The catalogue has no base component" : load_.fault;
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
    layout_.Follow(clsLayout::kGrowY, {IDC_IMG_LOGO});
    layout_.Follow(clsLayout::kGrowX, {IDC_LINE_TOP, IDC_LBL_HEADING_SM2});
    layout_.Follow(clsLayout::kMoveX, {IDC_IMG_LOGO_SMALL});
    layout_.Follow(clsLayout::kGrowX | clsLayout::kMoveY, {IDC_LINE_BOTTOM});
    layout_.Follow(clsLayout::kMoveY, {IDC_CMD_HELP, IDC_CMD_PROBLEMS});
    layout_.Follow(clsLayout::kMoveX | clsLayout::kMoveY, {IDC_CMD_BACK, IDC_CMD_NEXT, IDCANCEL});
}

/// In the order of the Tab key: each page is put before the wizard's own buttons.
void frmBuilder::AddPage(Page page) {
    const HWND window = PageWindow(page).Window();
    layout_.Add(window, clsLayout::kGrowX | clsLayout::kGrowY);
    SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
}

/// The pages behind the first one, when they are about to be shown: the program starts quicker
/// without them.
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

void frmBuilder::GoTo(Page page) {
    if (page != Page::Welcome)
        CreatePages();
    if (page == Page::Summary)
        ShowSummary();
    page_ = page;
    heading_.Show(page);
    ShowPageWindow(page);
    EnableWindow(Control(IDC_CMD_BACK), NextStep(page, WizardButton::Back) != NavigationStep{});
    if (IsWindowVisible(Window()))
        FocusPage();
    // It takes a while to come up, and the next click there empties a folder.
    if (page == Page::Summary)
        PaintBeforeInput(Window());
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

void frmBuilder::OnCommand(WPARAM wparam, LPARAM lparam) {
    // Enter on a button of a page: the system tells the window around the page.
    const HWND teller = GetParent(reinterpret_cast<HWND>(lparam));
    if (lparam != 0 && teller != Window()) {
        SendMessageA(teller, WM_COMMAND, wparam, lparam);
        return;
    }
    const int id = LOWORD(wparam);
    if (id == IDC_CMD_PROBLEMS)
        return frmProblems(build_->Problems()).Show(Window());
    for (std::size_t index = 0; index < kButtonIds.size(); ++index) {
        // Escape arrives as a click on Cancel, also while that button is disabled.
        if (kButtonIds[index] == id && IsWindowEnabled(Control(id)))
            return cmdButtons_Click(static_cast<WizardButton>(index));
    }
}

/// The look at a folder may take long: the answer is to be given by who sees the refusal.
void frmBuilder::Refuse(const FolderRefused& refusal) const {
    DiscardInput();
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
        throw FolderRefused("The warning about this build has changed: " + chosen.folder.Path() +
                            ". Read this page again before you go on.");
    }
    return gate_->InputsFor(chosen);
}

bool frmBuilder::AcceptsPartialCatalogue() {
    return load_.state == CatalogueState::Whole ||
           ShowMessage(
               Window(),
               "The catalogue was read only in part: " + load_.sentence +
                   "\r\n\r\nWhat was not read will not be in the build. Do you want to build "
                   "anyway?",
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
    heading_.Show(Page::Build);
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
    heading_.ShowEnding(HeadingOf(outcome));
    SetText(Control(IDC_CMD_PROBLEMS), "&Problems (" + std::to_string(problems) + ")...");
    ShowWindow(Control(IDC_CMD_PROBLEMS), problems > 0 ? SW_SHOW : SW_HIDE);
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
        OnCommand(wparam, lparam);
        return TRUE;
    case WM_HELP: // the F1 key
        // It comes from boxes and dialogs of the wizard, too.
        if (IsWindowEnabled(Window()) && IsWindowEnabled(Control(IDC_CMD_HELP)))
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
        // Who ends the session has decided; a wizard that is not building holds nothing to lose.
        return Answer(AnswerClosing(closing_) != ClosingAnswer::Refuse);
    case WM_DESTROY:
        PostQuitMessage(0);
        return TRUE;
    case WM_ERASEBKGND:
        return Answer(heading_.PaintBackground(reinterpret_cast<HDC>(wparam)));
    case WM_CTLCOLORSTATIC:
        return clsPageHeading::ColourOf(reinterpret_cast<HDC>(wparam),
                                        reinterpret_cast<HWND>(lparam));
    case WM_DRAWITEM:
        heading_.DrawPicture(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
        return TRUE;
    case kRunBuildMessage:
        build_->Run();
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace vesk
