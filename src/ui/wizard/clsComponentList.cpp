#include "ui/wizard/clsComponentList.h"

#include "base/Failure.h"
#include "base/ScopeFlag.h"
#include "ui/kit/modColumns.h"
#include "ui/kit/modResolution.h"
#include "ui/kit/modWindow.h"
#include "ui/wizard/frmItems.h"
#include "ui/wizard/modListWalk.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace vesk {

namespace {

constexpr DWORD kDoubleBuffer = 0x00010000; // LVS_EX_DOUBLEBUFFER
constexpr UINT_PTR kCheckTimer = 0x5643;    // none of the list's own
constexpr UINT kCheckPause = 10;            // milliseconds between two archives, for other events
constexpr int kTitleMargin = 16; // pixels at 96 DPI on both sides of a column's title together
constexpr int kTextMargin = 6;   // pixels at 96 DPI between a column's widest text and the next one
constexpr int kTipWidth = 420;   // pixels at 96 DPI, for long addresses

void SetCell(HWND list, int line, int column, const std::string& text) {
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = const_cast<char*>(text.c_str()); // only read
    SendMessageA(list, LVM_SETITEMTEXTA, static_cast<WPARAM>(line),
                 reinterpret_cast<LPARAM>(&item));
}

/// Pixels that a column needs for its title and its texts.
int FittingWidth(HWND list, int column) {
    // Fitted to its title, the last column would take all the room that is left.
    std::array<char, 64> title{};
    LVCOLUMNA description{};
    description.mask = LVCF_TEXT;
    description.pszText = title.data();
    description.cchTextMax = static_cast<int>(title.size());
    SendMessageA(list, LVM_GETCOLUMNA, static_cast<WPARAM>(column),
                 reinterpret_cast<LPARAM>(&description));
    const auto titleWidth = static_cast<int>(
        SendMessageA(list, LVM_GETSTRINGWIDTHA, 0, reinterpret_cast<LPARAM>(title.data())));
    ListView_SetColumnWidth(list, column, LVSCW_AUTOSIZE);
    return std::max(titleWidth + ScalePixels(list, kTitleMargin),
                    ListView_GetColumnWidth(list, column) + ScalePixels(list, kTextMargin));
}

} // namespace

clsComponentList::clsComponentList(Kind kind, Catalogue& catalogue, std::string programPath)
    : kind_(kind),
      catalogue_(catalogue),
      programPath_(std::move(programPath)),
      archives_(programPath_) {}

std::vector<CatalogueEntry>& clsComponentList::Entries() const {
    return EntriesOf(catalogue_, kind_);
}

int clsComponentList::LineCount() const {
    return ListView_GetItemCount(list_);
}

const CatalogueEntry& clsComponentList::EntryAt(int line) const {
    return Entries().at(static_cast<std::size_t>(line));
}

EntryPlace clsComponentList::PlaceAt(int line) const {
    return {kind_, static_cast<std::size_t>(line)};
}

ArchiveState clsComponentList::StateAt(int line) const {
    const CatalogueEntry& entry = EntryAt(line);
    return JudgeArchive(entry, PlaceAt(line), archives_.Known(entry.zip));
}

void clsComponentList::OpenSelected() {
    const int line = ListView_GetNextItem(list_, -1, LVNI_SELECTED);
    if (line >= 0)
        frmItems(catalogue_, PlaceAt(line), archives_).Show(list_);
}

void clsComponentList::Attach(HWND list) {
    list_ = list;
    ListView_SetExtendedListViewStyle(list_,
                                      LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT | kDoubleBuffer);
    events_.Attach(list_, [this](UINT message, WPARAM wparam, LPARAM lparam) {
        return OnListMessage(message, wparam, lparam);
    });
    note_.Attach(list_, kind_ == Kind::Plugins ? "The catalogue holds no plug-ins."
                                               : "The catalogue holds no base components.");
    AttachTip();
    AddColumns();
    Fill();
    FitColumns();
}

std::optional<LRESULT> clsComponentList::OnListMessage(UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_KEYDOWN || message == WM_MOUSEWHEEL || message == WM_VSCROLL)
        SendMessageA(tip_, TTM_POP, 0, 0); // another line is below the mouse then
    if (message == WM_MOUSEMOVE)
        FollowMouse({static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))});
    if (message != WM_TIMER || wparam != kCheckTimer)
        return std::nullopt;
    CheckNextArchive();
    return 0;
}

void clsComponentList::AddColumns() {
    std::vector<const char*> titles{"Name", "Archive", "State"};
    if (kind_ == Kind::Plugins)
        titles.insert(titles.begin() + 1, "Category");
    for (int column = 0; column < static_cast<int>(titles.size()); ++column) {
        LVCOLUMNA description{};
        description.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        description.cx = ScalePixels(list_, 100);
        description.iSubItem = column;
        description.pszText = const_cast<char*>(titles[static_cast<std::size_t>(column)]);
        SendMessageA(list_, LVM_INSERTCOLUMNA, static_cast<WPARAM>(column),
                     reinterpret_cast<LPARAM>(&description));
    }
}

void clsComponentList::Fill() {
    const ScopeFlag guard(filling_);
    const auto& entries = Entries();
    for (int line = 0; line < static_cast<int>(entries.size()); ++line) {
        const CatalogueEntry& entry = entries[static_cast<std::size_t>(line)];
        LVITEMA item{};
        item.mask = LVIF_TEXT;
        item.iItem = line;
        item.pszText = const_cast<char*>(entry.name.c_str());
        SendMessageA(list_, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
        ListView_SetCheckState(list_, line, entry.enabled);
        int column = 1;
        if (kind_ == Kind::Plugins)
            SetCell(list_, line, column++, CategoryTitle(catalogue_, entry));
        SetCell(list_, line, column, entry.zip);
    }
    RefreshStates();
    ListView_SetItemState(list_, 0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
}

void clsComponentList::RefreshStates() {
    const auto lines = static_cast<std::size_t>(LineCount());
    states_.resize(lines);
    stateTexts_.resize(lines);
    for (int line = 0; line < LineCount(); ++line) {
        states_[static_cast<std::size_t>(line)] = StateAt(line);
        ShowState(line);
    }
    nextToCheck_ = 0;
    SetTimer(list_, kCheckTimer, kCheckPause, nullptr);
}

void clsComponentList::ShowState(int line) {
    const auto index = static_cast<std::size_t>(line);
    const std::string text = StateText(EntryAt(line), PlaceAt(line), states_[index]);
    if (stateTexts_[index] == text)
        return;
    const ScopeFlag guard(filling_);
    stateTexts_[index] = text;
    SetCell(list_, line, kind_ == Kind::Plugins ? 3 : 2, text);
}

/// Computes one checksum. A list that is hidden, as during a build, waits until it is shown again.
void clsComponentList::CheckNextArchive() {
    const auto isUnchecked = [this](int line) {
        return states_[static_cast<std::size_t>(line)] == ArchiveState::Unchecked;
    };
    while (nextToCheck_ < LineCount() && !isUnchecked(nextToCheck_))
        ++nextToCheck_;
    const bool done = nextToCheck_ >= LineCount();
    if (done || !IsWindowVisible(list_)) {
        KillTimer(list_, kCheckTimer);
        if (done)
            FitColumns();
        return;
    }
    const CatalogueEntry& entry = EntryAt(nextToCheck_);
    states_[static_cast<std::size_t>(nextToCheck_)] =
        JudgeArchive(entry, PlaceAt(nextToCheck_), archives_.Facts(entry.zip, LetWindowsPaint));
    ShowState(nextToCheck_++);
}

void clsComponentList::FitColumns() {
    const int room = RoomForColumns(list_); // before columns are widened to measure them
    const int columns = kind_ == Kind::Plugins ? 4 : 3;
    std::vector<int> wanted;
    wanted.reserve(static_cast<std::size_t>(columns));
    for (int column = 0; column < columns; ++column)
        wanted.push_back(FittingWidth(list_, column));
    const std::vector<int> widths = ShareWidth(std::move(wanted), room);
    for (int column = 0; column < columns; ++column)
        ListView_SetColumnWidth(list_, column, widths[static_cast<std::size_t>(column)]);
}

std::optional<LRESULT> clsComponentList::HandleNotify(const NMHDR& header) {
    if (header.hwndFrom == tip_ && tip_ && header.code == TTN_GETDISPINFOA) {
        AnswerTip(reinterpret_cast<NMTTDISPINFOA&>(const_cast<NMHDR&>(header)));
        return 0;
    }
    if (header.hwndFrom != list_)
        return std::nullopt;
    switch (header.code) {
    case NM_CUSTOMDRAW:
        return Draw(reinterpret_cast<const NMLVCUSTOMDRAW&>(header));
    case NM_CLICK:
        Walk();
        break;
    case NM_DBLCLK:
        OnDoubleClick(reinterpret_cast<const NMITEMACTIVATE&>(header).ptAction);
        break;
    case LVN_ITEMCHANGED: {
        const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
        if (((change.uNewState ^ change.uOldState) & LVIS_STATEIMAGEMASK) != 0)
            Walk();
        break;
    }
    default:
        break;
    }
    return std::nullopt;
}

/// A double click on a check box only ticks twice.
void clsComponentList::OnDoubleClick(POINT position) {
    LVHITTESTINFO hit{};
    hit.pt = position;
    ListView_HitTest(list_, &hit);
    if (hit.iItem >= 0 && (hit.flags & LVHT_ONITEMSTATEICON) == 0)
        OpenSelected();
}

void clsComponentList::Walk() {
    if (filling_)
        return;
    const ScopeFlag guard(filling_);
    const TickAccess ticks{
        [this](std::size_t line) { return ListView_GetCheckState(list_, line) != 0; },
        [this](std::size_t line, bool ticked) {
            ListView_SetCheckState(list_, static_cast<WPARAM>(line), ticked);
        }};
    try {
        WalkTicks(Entries(), static_cast<std::size_t>(LineCount()), ticks);
    } catch (const Failure&) {
        RefuseBehind(static_cast<int>(kMostLines));
    }
    // A tick may change what a build does about an archive.
    for (int line = 0; line < LineCount(); ++line)
        ShowState(line);
}

/// The lines that the walk does not reach show what the catalogue says, and so what is built: in
/// grey, with their ticks, because an enabled entry is installed whether or not its tick is taken.
void clsComponentList::RefuseBehind(int line) {
    for (int beyond = line; beyond < LineCount(); ++beyond) {
        const bool enabled = EntryAt(beyond).enabled;
        if ((ListView_GetCheckState(list_, beyond) != 0) != enabled)
            ListView_SetCheckState(list_, beyond, enabled);
    }
    if (std::exchange(overflowTold_, true))
        return;
    const HWND root = GetAncestor(list_, GA_ROOT);
    ShowMessage(root,
                "Overflow: the list has " + std::to_string(LineCount()) + " lines, and only the " +
                    "first " + std::to_string(line) +
                    " can be ticked. The others, in grey, stay as the catalogue has them.",
                TextOf(root), MB_OK | MB_ICONERROR);
}

LRESULT clsComponentList::Draw(const NMLVCUSTOMDRAW& draw) const {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT)
        return CDRF_NOTIFYITEMDRAW;
    const auto line = static_cast<std::size_t>(draw.nmcd.dwItemSpec);
    if (draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT && line < Entries().size() &&
        (Entries()[line].lock || line >= kMostLines))
        const_cast<NMLVCUSTOMDRAW&>(draw).clrText = GetSysColor(COLOR_GRAYTEXT);
    return CDRF_DODEFAULT;
}

void clsComponentList::AttachTip() {
    tip_ = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr,
                           WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0, 0, list_, nullptr,
                           ProgramInstance(), nullptr);
    TTTOOLINFOA tool{};
    tool.cbSize = TTTOOLINFOA_V2_SIZE;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = GetParent(list_);
    tool.uId = reinterpret_cast<UINT_PTR>(list_);
    tool.lpszText = LPSTR_TEXTCALLBACKA;
    SendMessageA(tip_, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
    SendMessageA(tip_, TTM_SETMAXTIPWIDTH, 0, ScalePixels(list_, kTipWidth));
    SendMessageA(tip_, TTM_SETDELAYTIME, TTDT_AUTOPOP, 30000);
}

int clsComponentList::LineAt(POINT position) const {
    LVHITTESTINFO hit{};
    hit.pt = position;
    return static_cast<int>(
        SendMessageA(list_, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
}

void clsComponentList::FollowMouse(POINT position) {
    const int line = LineAt(position);
    if (line == tipLine_)
        return;
    tipLine_ = line;
    SendMessageA(tip_, TTM_POP, 0, 0);
}

/// Looks under the mouse anew: the keyboard may have scrolled the list since it moved.
void clsComponentList::AnswerTip(NMTTDISPINFOA& info) {
    POINT position{};
    GetCursorPos(&position);
    ScreenToClient(list_, &position);
    tipLine_ = LineAt(position);
    const bool onLine = tipLine_ >= 0 && tipLine_ < LineCount();
    tipText_ =
        onLine ? EntryTip(EntryAt(tipLine_), PlaceAt(tipLine_), StateAt(tipLine_)) : std::string();
    if (onLine) // the column may be too narrow for it
        tipText_ = EntryAt(tipLine_).name + "\r\n" + tipText_;
    info.lpszText = tipText_.data();
}

} // namespace vesk
