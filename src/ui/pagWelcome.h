#pragma once

#include "ui/clsDialog.h"

#include <string>

namespace vesk {

/// The first page: what the program is, with links that open when they are clicked.
class pagWelcome : public clsDialog {
public:
    explicit pagWelcome(HWND wizard);

    void SetWelcomeText(const std::string& text);

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    void OnCreated();
    static LRESULT CALLBACK TextProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                          UINT_PTR id, DWORD_PTR data);
};

/// Opens the link under the caret of a text box, if there is one and nothing is selected.
void OpenLinkAtCaret(HWND textBox);

} // namespace vesk
