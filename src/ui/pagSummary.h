#pragma once

#include "ui/clsDialog.h"

#include <string>

namespace vesk {

/// The page that tells what will be built.
class pagSummary : public clsDialog {
public:
    explicit pagSummary(HWND wizard);

    void SetSummary(const std::string& text);

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
};

} // namespace vesk
