#pragma once

#include "build/BuildFrontEnd.h"
#include "build/BuildLog.h"
#include "build/clsBuildRun.h"
#include "catalogue/Catalogue.h"
#include "catalogue/modCatalogueFile.h"
#include "startup/modStartUp.h"
#include "ui/kit/clsDialog.h"
#include "ui/kit/clsLayout.h"
#include "ui/kit/clsTaskbar.h"
#include "ui/kit/modPicture.h"
#include "ui/kit/modWindow.h"
#include "ui/wizard/modChosenFolder.h"
#include "ui/wizard/modNavigation.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

class pagBaseComponents;
class pagBuild;
class pagPlugins;
class pagSummary;
class pagWelcome;

/// The wizard's main window. The build run works through it: it shows the log, asks the questions
/// and downloads.
class frmBuilder : public clsDialog, private BuildFrontEnd {
public:
    explicit frmBuilder(ProgramPaths paths);
    frmBuilder(const frmBuilder&) = delete;
    frmBuilder& operator=(const frmBuilder&) = delete;
    ~frmBuilder() override;

    /// Loads the catalogue and shows the wizard; it ends the thread's message loop when it closes,
    /// which it may do before this returns.
    /// @param buttonFace font name of the four buttons; empty for the window's own font
    void Show(const std::string& buttonFace);

    /// True when the user left the wizard to make a catalogue first.
    [[nodiscard]] bool WantsEditor() const { return wantsEditor_; }

private:
    static constexpr UINT kRunBuildMessage = WM_APP; ///< Posted to itself.

    // What the window does.
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    void Form_Load();
    void SetButtonFace(const std::string& face);
    void Form_QueryUnload();
    void cmdButtons_Click(WizardButton button);
    void OnCommand(int id);
    bool ConfirmExit();
    void ShowHelp();
    INT_PTR PaintBackground(HDC dc) const;
    static INT_PTR ColourOf(HDC dc, HWND control);
    INT_PTR DrawPicture(const DRAWITEMSTRUCT& item);

    // Pages.
    void ExplainCatalogue();
    void CreatePages();
    void FollowSize();
    void GoTo(Page page);
    void ShowHeading(Page page);
    void ShowPageWindow(Page page);
    void FocusPage();
    [[nodiscard]] clsDialog& PageWindow(Page page);
    [[nodiscard]] RECT DialogUnits(int left, int top, int width, int height) const;
    void ShowControl(int id, bool shown) const;

    // The build.
    [[nodiscard]] ChosenFolder LookAtChosenFolder() const;
    void Refuse(const FolderRefused& refusal) const;
    bool AcceptInstallFolder();
    void ShowSummary();
    BuildInputs CollectInputs();
    bool AcceptsPartialCatalogue();
    bool PrepareBuild();
    void StartBuild();
    void RunBuild();
    void SaveRecord();
    void ShowEnding(const BuildOutcome& outcome);
    void EnableButtons(bool enabled);

    void AddLogLine(const std::string& text, LogMode mode) override;
    void ReportProblem(const Problem& problem) override;
    void SetStatus(const std::string& caption) override;
    bool AskYesNo(const std::string& question, const std::string& title) override;
    std::optional<std::string> AskPassword(const std::string& archiveName,
                                           bool wrongBefore) override;
    DownloadOutcome DownloadFile(const DownloadRequest& request) override;
    void LetEventsRun() override;
    void SetProgress(const BuildProgress& progress) override;
    bool StopRequested() override { return false; } // the window refuses to close meanwhile
    void EnterFinishedState(const BuildOutcome& outcome) override;

    ProgramPaths paths_;
    Catalogue catalogue_;
    CatalogueLoad load_;
    bool wantsEditor_ = false;
    SourceState source_;
    BuildLog log_;
    std::vector<Problem> problems_;
    std::unique_ptr<BuildInputs> inputs_; ///< Of the build that is about to start or runs.
    std::unique_ptr<clsBuildRun> run_;    ///< The same; keeps other builds out of the folder.
    Page page_ = Page::Welcome;
    ClosingState closing_;
    DWORD lastEvents_ = 0; ///< Tick count of when events last ran.

    clsLayout layout_;
    clsPictureView logo_;
    clsPictureView logoSmall_;
    GdiHandle largeFont_;
    GdiHandle boldFont_;
    GdiHandle buttonFont_;
    std::unique_ptr<clsTaskbar> taskbar_;

    std::unique_ptr<pagWelcome> welcomePage_;
    std::unique_ptr<pagBaseComponents> basePage_;
    std::unique_ptr<pagPlugins> pluginsPage_;
    std::unique_ptr<pagSummary> summaryPage_;
    std::unique_ptr<pagBuild> buildPage_;
};

} // namespace vesk
