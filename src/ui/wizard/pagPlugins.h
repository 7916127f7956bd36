#pragma once

#include "catalogue/Catalogue.h"
#include "ui/wizard/clsComponentPage.h"

#include <string>

namespace vesk {

/// The page on which the plug-ins are ticked.
class pagPlugins : public clsComponentPage {
public:
    /// Makes the page's window in the wizard's. @param catalogue outlives the page, which keeps its
    /// ticks up to date @param programPath where the archives are, ends in "\"
    pagPlugins(HWND wizard, Catalogue& catalogue, const std::string& programPath);

private:
    void OnCreated() override;
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
};

} // namespace vesk
