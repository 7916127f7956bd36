#include "base/modUtf8.h"

#include "ExpectedText.h"

TEST_CASE("UTF-8 is taken to the letter") {
    const auto units = [](const std::string& text) {
        const auto wide = vesk::FromUtf8(text);
        std::string numbers = wide ? "" : "broken";
        for (const wchar_t unit : wide.value_or(L""))
            numbers += std::to_string(unit) + " ";
        return numbers;
    };
    vesk::test::CheckFunctions("utf8", {{"units", units}});
}
