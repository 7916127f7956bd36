#pragma once

#include "catalogue/Catalogue.h"
#include "ui/kit/clsDialog.h"
#include "ui/kit/clsLayout.h"
#include "ui/wizard/clsComponentList.h"

#include <string>

namespace vesk {

/// The page on which the plug-ins are ticked.
class pagPlugins : public clsDialog {
public:
    pagPlugins(HWND wizard, Catalogue& catalogue, const std::string& programPath);

private:
    void OnCreated();
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;

    clsComponentList list_;
    clsLayout layout_;
};

} // namespace vesk
