#pragma once

#include "ui/kit/clsDialog.h"
#include "ui/kit/clsSubclass.h"

#include <string>

namespace vesk {

/// The page that shows what will be built, and above that what will be lost.
class pagSummary : public clsDialog {
public:
    /// Makes the page's window. @param wizard the dialog that it is in
    explicit pagSummary(HWND wizard);

    /// Shows a text, lines ended by CR LF.
    void SetSummary(const std::string& text);

    /// Shows a warning above the summary; an empty text takes it away.
    void SetWarning(const std::string& text);

    /// The warning that is shown.
    [[nodiscard]] const std::string& Warning() const { return warning_; }

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    void OnCreated();
    void Arrange() const;
    [[nodiscard]] RECT DialogUnits(int left, int top, int right, int bottom) const;

    std::string warning_;
    clsSubclass text_;
};

} // namespace vesk
