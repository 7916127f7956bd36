#pragma once

#include "catalogue/Catalogue.h"
#include "ui/clsListNote.h"
#include "ui/clsSubclass.h"
#include "ui/modWizardText.h"

#include <windows.h>

#include <commctrl.h>

#include <optional>
#include <string>
#include <vector>

namespace vesk {

/// A list view with check boxes that shows catalogue entries and keeps their ticks. Locked entries
/// are shown in grey and spring back. Resting the mouse on a line shows the entry's tool tip, a
/// double click opens the item view.
class clsComponentList {
public:
    enum class Kind { BaseComponents, Plugins };

    /// @param catalogue outlives the list; its entries take over the ticks
    clsComponentList(Kind kind, Catalogue& catalogue, std::string programPath);

    /// Takes over a list view of a dialog and fills it.
    void Attach(HWND list);

    /// Handles a notification of the list or its tool tip. @return its answer, if it wants one
    std::optional<LRESULT> HandleNotify(const NMHDR& header);

    /// Shows the selected entry in the item view.
    void OpenSelected() const;

    /// Fits the columns to the list's width.
    void FitColumns();

    [[nodiscard]] int LineCount() const;

    /// Reads anew which archives lie in the program folder.
    void RefreshStates();

private:
    [[nodiscard]] const CatalogueEntry& EntryAt(int line) const;
    [[nodiscard]] ArchivePlace StateAt(int line) const;
    [[nodiscard]] std::vector<CatalogueEntry>& Entries() const;
    void AddColumns();
    void Fill();
    void Walk();
    void RefuseBehind(int line);
    void OnDoubleClick(POINT position) const;
    LRESULT Draw(const NMLVCUSTOMDRAW& draw) const;
    void AttachTip();
    void FollowMouse(POINT position);
    void AnswerTip(NMTTDISPINFOA& info);

    Kind kind_;
    Catalogue& catalogue_;
    std::string programPath_;
    HWND list_ = nullptr;
    clsSubclass mouse_;
    clsListNote note_;
    HWND tip_ = nullptr; ///< Owned by the list's window, which destroys it.
    int tipLine_ = -1;
    std::string tipText_;
    bool overflowTold_ = false;
    bool filling_ = false; ///< Changes that the program makes are no clicks.
};

} // namespace vesk
