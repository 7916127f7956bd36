#pragma once

#include "build/clsBuildLog.h"
#include "ui/kit/clsSubclass.h"

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace vesk {

/// The list box that shows the build log, with its context menu. It works on the log's own lines:
/// the list shows the same ones under the same numbers.
class clsLogList {
public:
    /// @param log outlives the list
    /// @param programPath folder of the log file
    clsLogList(const clsBuildLog& log, std::string programPath);

    /// Takes over a multi-selection list box of a dialog.
    void Attach(HWND list);

    /// Shows lines that were added to the log and makes the last one the current line.
    void ShowLines(const std::vector<std::string>& lines);

    /// Makes the first line that reports something wrong the current line, so that it is in sight.
    void ShowFirstWarning() const;

    /// Opens the context menu. @param position of the mouse on the screen; (-1, -1) when the
    /// keyboard asked
    void OpenMenu(POINT position);

    /// The three entries of the menu.
    void Copy() const;
    void SelectAll() const;
    void SaveToLog() const;

private:
    [[nodiscard]] std::string SelectedText() const;
    [[nodiscard]] POINT CurrentLinePosition() const;
    void Widen(const std::string& line);
    bool HandleKey(WPARAM key) const;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wparam, LPARAM lparam);

    const clsBuildLog& log_;
    std::string programPath_;
    HWND list_ = nullptr;
    clsSubclass link_;
    int widest_ = 0; ///< Pixels that the widest line takes.
};

} // namespace vesk
