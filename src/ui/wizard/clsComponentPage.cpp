#include "ui/wizard/clsComponentPage.h"

#include "ui/kit/modWindow.h"

namespace vesk {

clsComponentPage::clsComponentPage(clsComponentList::Kind kind, Catalogue& catalogue,
                                   const std::string& programPath, int listId, int detailsId)
    : listId_(listId), detailsId_(detailsId), list_(kind, catalogue, programPath) {}

INT_PTR clsComponentPage::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        list_.Attach(Control(listId_));
        EnableWindow(Control(detailsId_), list_.LineCount() > 0);
        layout_.Attach(Window());
        Follow(clsLayout::kGrowX | clsLayout::kGrowY, {listId_});
        OnCreated();
        return FALSE;
    case WM_SIZE:
        layout_.OnSize();
        list_.FitColumns();
        return TRUE;
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
