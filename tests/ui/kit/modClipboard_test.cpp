#include "KitWindow.h"

#include "ui/kit/modClipboard.h"

TEST_CASE("a text is put on the clipboard without a code page that it depends on") {
    const vesk::test::WindowHandle window(vesk::test::MakeWindow("STATIC", nullptr, 10, 10));
    vesk::PutOnClipboard(window.Get(), "\xE4");
    REQUIRE(OpenClipboard(window.Get()));
    CHECK(EnumClipboardFormats(0) == CF_UNICODETEXT); // the form that the others are made of
    const auto* const text =
        static_cast<const wchar_t*>(GlobalLock(GetClipboardData(CF_UNICODETEXT)));
    CHECK((text && std::wstring(text) == L"\x00E4"));
    CloseClipboard();
}
