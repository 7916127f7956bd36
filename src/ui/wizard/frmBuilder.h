#pragma once

#include "build/clsBuildLog.h"
#include "build/clsBuildRun.h"
#include "catalogue/Catalogue.h"
#include "catalogue/modCatalogueFile.h"
#include "startup/modStartUp.h"
#include "ui/kit/clsDialog.h"
#include "ui/kit/clsLayout.h"
#include "ui/kit/modWindow.h"
#include "ui/wizard/clsPageHeading.h"
#include "ui/wizard/modNavigation.h"

#include <memory>
#include <string>

namespace vesk {

class clsBuildGate;
class clsWizardBuild;
class pagBaseComponents;
class pagBuild;
class pagPlugins;
class pagSummary;
class pagWelcome;

/// The wizard's main window: its pages, what leads from one to the next, and when a build may
/// start. The build itself is clsWizardBuild's.
class frmBuilder : public clsDialog {
public:
    /// @param paths where the program looks for catalogue and archives
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
    void Scaled() override { heading_.MakeFonts(); }
    void SetButtonFace(const std::string& face);
    void Form_QueryUnload();
    void cmdButtons_Click(WizardButton button);
    void OnCommand(WPARAM wparam, LPARAM lparam);
    bool ConfirmExit();
    void ShowHelp();

    // Pages.
    void ExplainCatalogue();
    void CreatePages();
    void AddPage(Page page);
    void FollowSize();
    void GoTo(Page page);
    void ShowPageWindow(Page page);
    void FocusPage();
    [[nodiscard]] clsDialog& PageWindow(Page page);

    // The build.
    void Refuse(const FolderRefused& refusal) const;
    bool AcceptInstallFolder();
    void ShowSummary();
    BuildInputs CollectInputs();
    bool AcceptsPartialCatalogue();
    bool PrepareBuild();
    void StartBuild();
    void OnBuildEnded(const BuildOutcome& outcome);
    void EnableButtons(bool enabled);

    ProgramPaths paths_;
    Catalogue catalogue_;
    CatalogueLoad load_;
    bool wantsEditor_ = false;
    SourceState source_;
    clsBuildLog log_;
    Page page_ = Page::Welcome;
    ClosingState closing_;

    clsLayout layout_;
    clsPageHeading heading_;
    GdiHandle buttonFont_;

    std::unique_ptr<pagWelcome> welcomePage_;
    std::unique_ptr<pagBaseComponents> basePage_;
    std::unique_ptr<pagPlugins> pluginsPage_;
    std::unique_ptr<pagSummary> summaryPage_;
    std::unique_ptr<pagBuild> buildPage_;
    std::unique_ptr<clsBuildGate> gate_;
    std::unique_ptr<clsWizardBuild> build_;
};

} // namespace vesk
