#pragma once

#include "catalogue/Catalogue.h"
#include "catalogue/clsProgramArchives.h"
#include "ui/kit/clsListNote.h"
#include "ui/kit/clsSubclass.h"
#include "ui/wizard/modWizardText.h"

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
    using Kind = EntryList;

    /// @param catalogue outlives the list; its entries take over the ticks
    clsComponentList(Kind kind, Catalogue& catalogue, std::string programPath);

    /// Takes over a list view of a dialog and fills it.
    void Attach(HWND list);

    /// Handles a notification of the list or its tool tip. @return its answer, if it wants one
    std::optional<LRESULT> HandleNotify(const NMHDR& header);

    /// Shows the selected entry in the item view.
    void OpenSelected();

    /// Fits the columns to the list's width.
    void FitColumns();

    /// How many lines there are: one for each entry.
    [[nodiscard]] int LineCount() const;

    /// Reads again which archives are in the program folder. Their checksums follow one by one
    /// while the list is shown, so that the window stays alive.
    void RefreshStates();

private:
    [[nodiscard]] const CatalogueEntry& EntryAt(int line) const;
    [[nodiscard]] EntryPlace PlaceAt(int line) const;
    [[nodiscard]] ArchiveState StateAt(int line) const;
    [[nodiscard]] std::vector<CatalogueEntry>& Entries() const;
    void AddColumns();
    void Fill();
    void Walk();
    void ShowState(int line);
    void CheckNextArchive();
    std::optional<LRESULT> OnListMessage(UINT message, WPARAM wparam, LPARAM lparam);
    void RefuseBehind(int line);
    void OnDoubleClick(POINT position);
    LRESULT Draw(const NMLVCUSTOMDRAW& draw) const;
    void AttachTip();
    [[nodiscard]] int LineAt(POINT position) const;
    void FollowMouse(POINT position);
    void AnswerTip(NMTTDISPINFOA& info);

    Kind kind_;
    Catalogue& catalogue_;
    std::string programPath_;
    clsProgramArchives archives_;
    std::vector<ArchiveState> states_;    ///< Of each line, as it was last looked at.
    std::vector<std::string> stateTexts_; ///< What the state column shows.
    int nextToCheck_ = 0;                 ///< The first line whose checksum may be missing.
    HWND list_ = nullptr;
    clsSubclass events_;
    clsListNote note_;
    HWND tip_ = nullptr; ///< Owned by the list's window, which destroys it.
    int tipLine_ = -1;
    std::string tipText_;
    bool overflowTold_ = false;
    bool filling_ = false; ///< Changes that the program makes are no clicks.
};

} // namespace vesk
