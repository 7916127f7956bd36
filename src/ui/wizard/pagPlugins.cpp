#include "ui/wizard/pagPlugins.h"

#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

namespace vesk {

pagPlugins::pagPlugins(HWND wizard, Catalogue& catalogue, const std::string& programPath)
    : clsComponentPage(clsComponentList::Kind::Plugins, catalogue, programPath, IDC_LST_PLUGINS,
                       IDC_CMD_PLUGIN_DETAILS) {
    Create(wizard, IDD_PAGE_PLUGINS);
}

void pagPlugins::OnCreated() {
    Follow(clsLayout::kGrowX | clsLayout::kGrowY, {IDC_PIC_FRAME3});
    Follow(clsLayout::kMoveX | clsLayout::kMoveY, {IDC_CMD_PLUGIN_DETAILS});
}

INT_PTR pagPlugins::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    if (message != WM_COMMAND)
        return clsComponentPage::Handle(message, wparam, lparam);
    FollowFocus(reinterpret_cast<HWND>(lparam), HIWORD(wparam), IDC_CMD_NEXT);
    if (wparam == MAKEWPARAM(IDC_CMD_PLUGIN_DETAILS, BN_CLICKED))
        OpenSelected();
    return FALSE;
}

} // namespace vesk
