#pragma once

#include "catalogue/clsCatalogueEditor.h"
#include "catalogue/clsEditedFile.h"
#include "startup/modStartUp.h"
#include "ui/editor/clsEntryFrame.h"
#include "ui/kit/clsDialog.h"
#include "ui/kit/clsLayout.h"
#include "ui/kit/clsPictureView.h"
#include "ui/kit/clsToolTips.h"
#include "ui/kit/modWindow.h"

#include <string>

namespace vesk {

/// The catalogue editor's window. It edits a working copy of the catalogue, which Apply writes to
/// the catalogue file.
class frmSetup : public clsDialog {
public:
    /// @param told the user has already been shown what is wrong with the catalogue's file
    explicit frmSetup(const ProgramPaths& paths, bool told = false);

    /// Shows the window; it ends the thread's message loop when it closes.
    void Show();

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    INT_PTR HandlePainting(UINT message, WPARAM wparam, LPARAM lparam);
    void LimitSize(MINMAXINFO& info) const;
    void Form_Load();
    void Form_QueryUnload();
    void ShowPlaceTip();
    void cmdButtons_Click(int index);
    void cmdActions_Click(int index);
    void cmdCheck_Click();
    void OnCommand(int id, int notification);
    void OnClick(int id);
    bool OnField(int id, int notification);
    void AnswerTip(NMHDR& header);

    void cmdCategories_Click();
    void OnEnter();
    void BeginFromNothing();
    void ExplainCatalogue() const;
    [[nodiscard]] bool RefuseWhatIsLost();
    void GoTo(const EntryPlace& place);
    clsEntryFrame& FrameOf(EntryList list) {
        return list == EntryList::Plugins ? pluginFrame_ : baseFrame_;
    }
    void FollowSize();
    void AddTips();
    void ShowAll();
    void ShowState(const std::string& whenUnchanged);
    void EnableWhatWorks();
    [[nodiscard]] bool Apply();
    void Discard();
    [[nodiscard]] bool MayLeave();

    ProgramPaths paths_;
    clsEditedFile file_;
    CatalogueLoad load_; ///< What was read of it.
    bool told_;          ///< The wizard said what is wrong with it.
    clsCatalogueEditor editor_;
    clsEntryFrame baseFrame_;
    clsEntryFrame pluginFrame_;
    clsToolTips tips_;
    std::string tipText_;
    clsPictureView logoSmall_;
    GdiHandle headingFont_;
    clsLayout layout_;
    HWND lastField_ = nullptr; ///< The field that had the keyboard last.
    HWND movedBy_ = nullptr;   ///< The button that moved an entry last.
    bool showing_ = false;     ///< The settings change because they are shown, not by the user.
};

} // namespace vesk
