#include "console/modOptions.h"

#include "ExpectedText.h"

using namespace vesk;

TEST_CASE("options are read") {
    const ConsoleOptions options =
        ParseOptions({"--install", "C:\\x", "--enable", "A", "--enable", "B b", "--disable", "C",
                      "--no", "--quiet", "--source", "D:\\"});
    CHECK(options.action == ConsoleOptions::Action::Build);
    CHECK(options.install == "C:\\x");
    CHECK(options.source == "D:\\");
    CHECK(options.enable == std::vector<std::string>{"A", "B b"});
    CHECK(options.disable == std::vector<std::string>{"C"});
    CHECK(options.answer == false);
    CHECK(options.quiet);
    for (const char* written : {"proxy:8080", "http://proxy:8080", "HTTP://proxy:8080/"}) {
        const ConsoleOptions same = ParseOptions({"--proxy", written});
        REQUIRE(same.proxy);
        CHECK(same.proxy->host == "proxy");
        CHECK(same.proxy->port == 8080);
    }
    CHECK_FALSE(ParseOptions({}).answer.has_value());
}

TEST_CASE("wrong options are refused with a sentence that names them") {
    test::CheckLines("wrong_options", [](const std::string& line) -> std::string {
        try {
            ParseOptions(Split(line, '|'));
        } catch (const UsageError& error) {
            return error.what();
        }
        return "taken";
    });
}
