#include "ui/kit/clsReportList.h"

#include "ui/kit/modClipboard.h"
#include "ui/kit/modColumns.h"
#include "ui/kit/modResolution.h"
#include "ui/kit/modWindow.h"

#include <algorithm>
#include <utility>

namespace vesk {

namespace {

constexpr int kCellMargin = 16;              // pixels at 96 DPI beside a cell's text, both sides
constexpr std::size_t kMeasuredLines = 100;  // the first ones stand for all
constexpr std::size_t kMeasuredLetters = 40; // longer texts get what is left over

} // namespace

void clsReportList::Attach(HWND list, Content content) {
    list_ = list;
    content_ = std::move(content);
    ListView_SetExtendedListViewStyle(list_, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    int column = 0;
    for (const char* title : content_.titles) {
        LVCOLUMNA description{};
        description.mask = LVCF_TEXT | LVCF_SUBITEM;
        description.iSubItem = column;
        description.pszText = const_cast<char*>(title); // only read
        SendMessageA(list_, LVM_INSERTCOLUMNA, static_cast<WPARAM>(column++),
                     reinterpret_cast<LPARAM>(&description));
    }
    note_.Attach(list_, content_.whenEmpty);
    keys_.Attach(
        list_, [this](UINT message, WPARAM wparam, LPARAM) { return OnMessage(message, wparam); });
    Refresh();
}

void clsReportList::Refresh() {
    ListView_SetItemCountEx(list_, static_cast<int>(content_.count()), LVSICF_NOSCROLL);
    FitColumns();
    InvalidateRect(list_, nullptr, TRUE);
}

int clsReportList::WantedWidth(int column) const {
    int width = TextWidth(list_, content_.titles[static_cast<std::size_t>(column)]);
    const std::size_t lines = std::min(content_.count(), kMeasuredLines);
    for (std::size_t line = 0; line < lines; ++line)
        width = std::max(width,
                         TextWidth(list_, content_.cell(line, column).substr(0, kMeasuredLetters)));
    return width + ScalePixels(list_, kCellMargin);
}

/// What is left over goes to the last column, whose texts are sentences.
void clsReportList::FitColumns() const {
    if (!list_)
        return; // a dialog has a size before it has its list
    const int columns = static_cast<int>(content_.titles.size());
    std::vector<int> wanted;
    for (int column = columns - 1; column >= 0; --column)
        wanted.push_back(WantedWidth(column));
    const std::vector<int> widths = ShareWidth(std::move(wanted), RoomForColumns(list_));
    for (int column = 0; column < columns; ++column)
        ListView_SetColumnWidth(list_, column,
                                widths[static_cast<std::size_t>(columns - 1 - column)]);
}

void clsReportList::Select(int line) const {
    constexpr UINT kChosen = LVIS_SELECTED | LVIS_FOCUSED;
    if (line == kNone) {
        ListView_SetItemState(list_, -1, 0, LVIS_SELECTED);
        return;
    }
    ListView_SetItemState(list_, line, kChosen, kChosen);
    ListView_EnsureVisible(list_, line, FALSE);
}

std::string clsReportList::WholeLine(std::size_t line) const {
    if (content_.whole)
        return content_.whole(line);
    std::string text;
    for (int column = 0; column < static_cast<int>(content_.titles.size()); ++column)
        text += (column == 0 ? "" : "\t") + content_.cell(line, column);
    return text;
}

void clsReportList::Copy() const {
    const bool all = ListView_GetSelectedCount(list_) == 0;
    const int flags = all ? LVNI_ALL : LVNI_SELECTED;
    std::string text;
    for (int line = ListView_GetNextItem(list_, -1, flags); line >= 0;
         line = ListView_GetNextItem(list_, line, flags))
        text += WholeLine(static_cast<std::size_t>(line)) + "\r\n";
    PutOnClipboard(list_, text);
}

std::optional<LRESULT> clsReportList::OnMessage(UINT message, WPARAM wparam) const {
    if (message != WM_KEYDOWN || GetKeyState(VK_CONTROL) >= 0)
        return std::nullopt;
    if (wparam == 'C' || wparam == VK_INSERT) {
        Copy();
    } else if (wparam == 'A') {
        ListView_SetItemState(list_, -1, LVIS_SELECTED, LVIS_SELECTED);
    } else {
        return std::nullopt;
    }
    return 0;
}

bool clsReportList::HandleNotify(const NMHDR& header) const {
    if (header.hwndFrom != list_ || header.code != LVN_GETDISPINFOA)
        return false;
    const LVITEMA& item = reinterpret_cast<const NMLVDISPINFOA&>(header).item;
    const auto line = static_cast<std::size_t>(item.iItem);
    if ((item.mask & LVIF_TEXT) != 0 && line < content_.count())
        lstrcpynA(item.pszText, content_.cell(line, item.iSubItem).c_str(), item.cchTextMax);
    return true;
}

} // namespace vesk
