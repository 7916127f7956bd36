#include "console/modOptions.h"

#include <doctest/doctest.h>

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
    using Arguments = std::vector<std::string>;
    struct Row {
        Arguments arguments;
        const char* named;
    };
    for (const Row& row :
         {Row{{"--instal"}, "--instal"}, Row{{"x"}, "\"x\""}, Row{{"--install"}, "--install needs"},
          Row{{"--enable", ""}, "--enable"}, Row{{"--yes", "--no"}, "exclude"},
          Row{{"--proxy", "host"}, "host"}, Row{{"--proxy", "host:0"}, "host:0"},
          Row{{"--proxy", ":80"}, ":80"}, Row{{"--proxy", "host:65536"}, "65536"},
          Row{{"--proxy", "host:8x"}, "8x"}, Row{{"--proxy", "https://host:80"}, "https://host"},
          Row{{"--proxy", "http://u@host:80"}, "u@host"},
          Row{{"--proxy", "http://:80"}, "http://:"}, Row{{"--proxy", "http://h:80/x"}, "80/x"},
          Row{{"--proxy", "a b:80"}, "a b"}, Row{{"--proxy", "http://"}, "http://"}}) {
        CAPTURE(row.named);
        CHECK_THROWS_WITH_AS(ParseOptions(row.arguments), doctest::Contains(row.named), UsageError);
    }
}
