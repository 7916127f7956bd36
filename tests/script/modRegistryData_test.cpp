#include "script/modRegistryData.h"

#include "ExpectedText.h"

using namespace vesk;

TEST_CASE("texts as numbers") {
    test::CheckLines("registry_numbers", [](const std::string& text) {
        std::string number = "none";
        test::FailureIn([&] { number = std::to_string(NumberOf(text)); });
        return number;
    });
}

TEST_CASE("the bytes that are stored for each type") {
    using std::string;
    const RegistryData list = std::vector<string>{"a", "", "bc"};
    CHECK(RegistryBytes("text", 1) == string("text\0", 5));
    CHECK(RegistryBytes(-5, 1) == string("-5\0", 3));
    CHECK(RegistryBytes("16", 4) == string("\x10\0\0\0", 4));
    CHECK(RegistryBytes(-2, 4) == "\xFE\xFF\xFF\xFF");
    CHECK(RegistryBytes("1", 3) == "1");
    CHECK(RegistryBytes(0x1F, 3) == string("1\0", 2));
    CHECK(RegistryBytes("2748", 3) == string("A\0B", 3)); // 2748 is ABC in hexadecimal
    CHECK(RegistryBytes(-1, 3) == string("F\0F\0F\0F\0", 8));
    CHECK(RegistryBytes(list, 7) == string("a\0\0bc\0", 6));
    CHECK(RegistryBytes("text", 2).empty());
    for (const std::uint32_t type : {1u, 3u, 4u})
        CHECK_THROWS_AS(RegistryBytes(list, type), Failure);
    CHECK_THROWS_AS(RegistryBytes("one text", 7), Failure);
}
