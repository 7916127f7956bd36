#include "KitWindow.h"

#include "ui/kit/clsReportList.h"

#include <string>
#include <vector>

using namespace vesk;
using namespace vesk::test;

namespace {

constexpr int kWidth = 300;

/// True when something is drawn below the header of a list that is shown.
bool ShowsText(HWND list) {
    RedrawWindow(list, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    return HasPixel(list, {5, 30, kWidth - 20, 80},
                    [](COLORREF pixel) { return pixel != GetSysColor(COLOR_WINDOW); });
}

/// A list in a dialog.
struct Fixture {
    void Fill(const std::vector<const char*>& titles, DWORD style = 0) {
        window =
            MakeWindow(WC_LISTVIEWA, dialog.Get(), kWidth, 100, style | LVS_REPORT | LVS_OWNERDATA);
        list.Attach(window, {.titles = titles,
                             .count = [this] { return lines.size(); },
                             .cell = [this](std::size_t line, int) { return lines[line]; },
                             .whenEmpty = "Nothing is in it."});
    }

    WindowHandle dialog{MakeWindow("STATIC", nullptr, 400, 200)};
    HWND window = nullptr;
    std::vector<std::string> lines;
    clsReportList list;
};

} // namespace

// What lists show and copy is compared where the programs show them.
TEST_CASE_FIXTURE(Fixture, "a list keeps its columns in sight, its texts in the room for them") {
    lines = {"one", "two " + std::string(300, 'w')};
    Fill({"First", "Second"});
    RECT inside{};
    GetClientRect(window, &inside);
    CHECK(ListView_GetColumnWidth(window, 0) + ListView_GetColumnWidth(window, 1) <= inside.right);
    CHECK(ListView_GetColumnWidth(window, 0) > 0);
    std::string asked(20, '\0');
    NMLVDISPINFOA question{};
    question.hdr = {window, 0, static_cast<UINT>(LVN_GETDISPINFOA)};
    question.item.mask = LVIF_TEXT;
    question.item.iItem = 1;
    question.item.pszText = asked.data();
    question.item.cchTextMax = 5;
    CHECK(list.HandleNotify(question.hdr));
    CHECK(asked.substr(0, asked.find('\0')) == "two ");
    question.item.iItem = 7; // behind the last line
    CHECK(list.HandleNotify(question.hdr));
    list.Select(1);
    CHECK(list.Selected() == 1);
    list.Select(clsReportList::kNone);
    CHECK(list.Selected() == clsReportList::kNone);
}

TEST_CASE_FIXTURE(Fixture, "an empty list says why; one with lines does not") {
    Fill({"First"}, WS_VISIBLE);
    ShowWindow(dialog.Get(), SW_SHOWNOACTIVATE);
    CHECK(ShowsText(window));
    lines = {""};
    list.Refresh();
    CHECK(ListView_GetItemCount(window) == 1);
    CHECK_FALSE(ShowsText(window));
}
