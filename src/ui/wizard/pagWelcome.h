#pragma once

#include "ui/kit/clsDialog.h"
#include "ui/kit/clsLayout.h"
#include "ui/kit/clsSubclass.h"

#include <optional>
#include <string>

namespace vesk {

/// The first page: what the program is, with links that open when they are clicked.
class pagWelcome : public clsDialog {
public:
    /// Makes the page's window. @param wizard the dialog that it is in
    explicit pagWelcome(HWND wizard);

    /// Shows a text, lines ended by CR LF; addresses in it become links.
    void SetWelcomeText(const std::string& text);

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    void OnCreated();
    std::optional<LRESULT> OnTextMessage(UINT message, WPARAM wparam, LPARAM lparam);

    clsLayout layout_;
    clsSubclass text_;
};

/// Opens the link under the caret of a text box, if there is one and nothing is selected.
void OpenLinkAtCaret(HWND textBox);

} // namespace vesk
