#include "ui/wizard/pagPlugins.h"

#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

namespace vesk {

pagPlugins::pagPlugins(HWND wizard, Catalogue& catalogue, const std::string& programPath)
    : list_(clsComponentList::Kind::Plugins, catalogue, programPath) {
    Create(wizard, IDD_PAGE_PLUGINS);
}

void pagPlugins::OnCreated() {
    list_.Attach(Control(IDC_LST_PLUGINS));
    EnableWindow(Control(IDC_CMD_PLUGIN_DETAILS), list_.LineCount() > 0);
    layout_.Attach(Window());
    layout_.Add(Control(IDC_PIC_FRAME3), clsLayout::kGrowX | clsLayout::kGrowY);
    layout_.Add(Control(IDC_LST_PLUGINS), clsLayout::kGrowX | clsLayout::kGrowY);
    layout_.Add(Control(IDC_CMD_PLUGIN_DETAILS), clsLayout::kMoveX | clsLayout::kMoveY);
}

INT_PTR pagPlugins::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        return FALSE;
    case WM_SIZE:
        layout_.OnSize();
        list_.FitColumns();
        return TRUE;
    case WM_COMMAND:
        FollowFocus(reinterpret_cast<HWND>(lparam), HIWORD(wparam), IDC_CMD_NEXT);
        if (wparam == MAKEWPARAM(IDC_CMD_PLUGIN_DETAILS, BN_CLICKED))
            list_.OpenSelected();
        return FALSE;
    case WM_SHOWWINDOW:
        if (wparam != FALSE)
            list_.RefreshStates();
        return FALSE;
    case WM_NOTIFY:
        return Answer(list_.HandleNotify(*reinterpret_cast<const NMHDR*>(lparam)));
    default:
        return FALSE;
    }
}

} // namespace vesk
