#include "KitWindow.h"

#include "ui/kit/clsSubclass.h"

#include <memory>

using vesk::clsSubclass;
using vesk::test::MakeWindow;

namespace {

constexpr UINT kAsk = WM_APP + 7;

std::optional<LRESULT> AnswerSeven(UINT message, WPARAM, LPARAM) {
    return message == kAsk ? std::optional<LRESULT>(7) : std::nullopt;
}

} // namespace

TEST_CASE("a control outlives the object that sees its messages, and the other way round") {
    const HWND window = MakeWindow("STATIC", nullptr, 10, 10);
    {
        clsSubclass first;
        first.Attach(window, AnswerSeven);
        clsSubclass second; // both see the messages
        int seen = 0;
        second.Attach(window, [&](UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
            seen += message == kAsk ? 1 : 0;
            return std::nullopt;
        });
        CHECK(SendMessageA(window, kAsk, 0, 0) == 7);
        CHECK(seen == 1);
    }
    CHECK(SendMessageA(window, kAsk, 0, 0) == 0);
    clsSubclass last;
    last.Attach(window, AnswerSeven);
    DestroyWindow(window);
    CHECK(last.PassOn(kAsk, 0, 0) == 0);
}

TEST_CASE("a handler may destroy the object that it belongs to, and the control with it") {
    for (const bool controlToo : {false, true}) {
        const HWND window = MakeWindow("STATIC", nullptr, 10, 10);
        auto owner = std::make_unique<clsSubclass>();
        auto guard = std::make_shared<int>(5); // goes with the handler
        const std::weak_ptr<int> handler = guard;
        owner->Attach(window,
                      [&owner, window, controlToo, kept = std::move(guard)](
                          UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
                          if (message != kAsk)
                              return std::nullopt;
                          owner.reset();
                          if (controlToo)
                              DestroyWindow(window);
                          return *kept; // still there
                      });
        CHECK(SendMessageA(window, kAsk, 0, 0) == 5);
        CHECK(handler.expired());
        if (!controlToo)
            DestroyWindow(window);
    }
}
