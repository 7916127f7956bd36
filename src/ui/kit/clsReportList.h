#pragma once

#include "ui/kit/clsListNote.h"
#include "ui/kit/clsSubclass.h"

#include <windows.h>

#include <commctrl.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

/// A list view in columns that asks for its texts when they are shown, so that there can be
/// thousands of lines. All columns stay in sight whatever is in them; Ctrl+C copies the selected
/// lines (all of them when none is selected), Ctrl+A selects all. The list view has the style
/// LVS_OWNERDATA.
class clsReportList {
public:
    /// What the list shows; the functions are called as long as the list lives.
    struct Content {
        std::vector<const char*> titles; ///< Of the columns.
        std::function<std::size_t()> count;
        std::function<std::string(std::size_t line, int column)> cell;

        /// A line as it is copied; without this, its cells with tabs between them.
        std::function<std::string(std::size_t line)> whole = {};
        std::string whenEmpty = {}; ///< What is said in place of lines.
    };

    static constexpr int kNone = -1;

    /// Takes over a list view of a dialog and shows the content.
    void Attach(HWND list, Content content);

    /// Shows the content again, after lines came, went or changed. The selection stays.
    void Refresh();

    /// What is said in place of lines from now on.
    void SetNote(const std::string& text) { note_.SetNote(text); }

    /// Fits the columns to the list's width; for WM_SIZE, too.
    void FitColumns() const;

    /// Number of the first selected line, or of the one that has the keyboard; kNone for none.
    [[nodiscard]] int Selected() const { return ListView_GetNextItem(list_, -1, LVNI_SELECTED); }
    [[nodiscard]] int Focused() const { return ListView_GetNextItem(list_, -1, LVNI_FOCUSED); }

    /// Selects a line and brings it into sight; kNone takes the selection away.
    void Select(int line) const;

    /// Copies the selected lines, or all when none is, to the clipboard.
    void Copy() const;

    /// Answers the list's questions for texts. @return true when the notification was one
    [[nodiscard]] bool HandleNotify(const NMHDR& header) const;

    /// The list view; null before Attach.
    [[nodiscard]] HWND Window() const { return list_; }

private:
    [[nodiscard]] int WantedWidth(int column) const;
    [[nodiscard]] std::string WholeLine(std::size_t line) const;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wparam) const;

    HWND list_ = nullptr;
    Content content_;
    clsListNote note_;
    clsSubclass keys_;
};

} // namespace vesk
