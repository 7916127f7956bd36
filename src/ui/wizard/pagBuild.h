#pragma once

#include "build/clsBuildLog.h"
#include "ui/kit/clsDialog.h"
#include "ui/kit/clsLayout.h"
#include "ui/wizard/clsLogList.h"

#include <cstddef>
#include <string>

namespace vesk {

/// The page on which a build run shows what it does.
class pagBuild : public clsDialog {
public:
    /// @param log outlives the page
    pagBuild(HWND wizard, const clsBuildLog& log, const std::string& programPath);

    /// The list that shows the log.
    clsLogList& LogList() { return list_; }

    /// Shows what is being done, in a few words.
    void SetStatus(const std::string& caption);

    /// Shows on the bar how much of a total is done.
    void SetProgress(std::size_t done, std::size_t total);

    /// Shows that the run is over: the status is no action any more, and the log stands at its
    /// first warning.
    void ShowEnded();

    /// Gives the keyboard to the log.
    void FocusLog();

private:
    void OnCreated();
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;

    clsLogList list_;
    clsLayout layout_;
};

} // namespace vesk
