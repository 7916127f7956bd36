#include "script/clsRegistry.h"

#include "base/Failure.h"
#include "base/UniqueHandle.h"
#include "script/RegistryTestKey.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <string>

using namespace vesk;
using namespace vesk::test;

namespace {

constexpr std::uint32_t kUser = 0x80000001;
constexpr std::uint32_t kDynamicData = 0x80000006;
using Texts = std::vector<std::string>;

std::string Below(const std::string& name) {
    return std::string(kTestKey) + "\\" + name;
}

/// The number of the next handle: it grows with every handle that is left open.
std::uintptr_t NextHandle() {
    const UniqueHandle<::CloseHandle, HANDLE> event(CreateEventA(nullptr, FALSE, FALSE, nullptr));
    return reinterpret_cast<std::uintptr_t>(event.Get());
}

} // namespace

TEST_CASE_FIXTURE(RegistryTestKey, "each type is stored as it is stored, and told as it is told") {
    const RegistryData list = Texts{"a", "b"};
    CHECK(clsRegistry::SetKeyValue(kUser, kTestKey, "text", "some text", 1));
    CHECK(clsRegistry::SetKeyValue(kUser, kTestKey, "number", "16", 4));
    CHECK(clsRegistry::SetKeyValue(kUser, kTestKey, "list", list, 7));
    CHECK_FALSE(
        clsRegistry::SetKeyValue(kUser, kTestKey, "binary", "31", 3)); // written all the same
    for (const std::uint32_t type : {0u, 2u, 5u, 6u, 8u})
        CHECK_FALSE(clsRegistry::SetKeyValue(kUser, kTestKey, "text", "other", type));

    // That they are read as what they are shows their types.
    for (const auto& [name, value] : {std::pair{"text", "some text"},
                                      {"number", "16"},
                                      {"binary", "3100"},
                                      {"list", "a"},
                                      {"none", ""}})
        CHECK(clsRegistry::QueryValue(kUser, kTestKey, name) == value);

    SHSetValueA(HKEY_CURRENT_USER, kTestKey, "expand", REG_EXPAND_SZ, "%SystemRoot%\\x", 15);
    const std::string expanded = clsRegistry::QueryValue(kUser, kTestKey, "expand");
    CHECK(expanded.find('%') == std::string::npos);
    CHECK(expanded.ends_with("\\x"));
}

TEST_CASE_FIXTURE(RegistryTestKey, "a key that is not there is not made, and the results say so") {
    const std::string none = Below("none");
    for (const std::uint32_t root : {kUser, kDynamicData, 0u}) {
        CAPTURE(root);
        CHECK_FALSE(clsRegistry::SetKeyValue(root, none, "n", "1", 1));
        CHECK(clsRegistry::SetKeyValue(root, none, "n", "1", 3));
        CHECK_FALSE(clsRegistry::EnumKeys(root, none).has_value());
        CHECK(clsRegistry::IsPathEmpty(root, none));
        clsRegistry::DeleteValue(root, none, "n");
        clsRegistry::DeleteKey(root, none, "n");
    }
    clsRegistry::CreateNewKey(kDynamicData, none);
    CHECK(clsRegistry::EnumKeys(kUser, kTestKey) == Texts{});
}

TEST_CASE_FIXTURE(RegistryTestKey, "keys are created level by level, listed and deleted") {
    clsRegistry::CreateNewKey(kUser, Below("one\\two\\three"));
    clsRegistry::SetKeyValue(kUser, Below("one"), "kept", "x", 1);
    clsRegistry::CreateNewKey(kUser, Below("one"));
    clsRegistry::CreateNewKey(kUser, Below("other"));
    CHECK(clsRegistry::QueryValue(kUser, Below("one"), "kept") == "x");
    CHECK(clsRegistry::EnumKeys(kUser, kTestKey).value_or(Texts{}).size() == 2);
    clsRegistry::DeleteKey(kUser, kTestKey, "one"); // has keys below it
    clsRegistry::DeleteKey(kUser, kTestKey, "other");
    CHECK(clsRegistry::EnumKeys(kUser, kTestKey) == Texts{"one"});
    CHECK(clsRegistry::EnumKeys(kUser, Below("one\\two")) == Texts{"three"});
}

TEST_CASE_FIXTURE(RegistryTestKey, "values are listed up to the first that is too long") {
    Texts names{"left over"}, values{"left over"};
    clsRegistry::SetKeyValue(kUser, kTestKey, "", "default", 1);
    CHECK(clsRegistry::IsPathEmpty(kUser, kTestKey));
    clsRegistry::SetKeyValue(kUser, kTestKey, "n", "value", 1);
    CHECK_FALSE(clsRegistry::IsPathEmpty(kUser, kTestKey));
    clsRegistry::EnumValues(kUser, kTestKey, names, values);
    std::ranges::sort(names);
    std::ranges::sort(values);
    CHECK(names == Texts{"", "n"});
    CHECK(values == Texts{"default", "value"});
    clsRegistry::DeleteValue(kUser, kTestKey, "n");
    clsRegistry::DeleteValue(kUser, kTestKey, "");
    clsRegistry::SetKeyValue(kUser, kTestKey, "long", std::string(255, 'x'), 1);
    clsRegistry::EnumValues(kUser, kTestKey, names, values);
    CHECK(names.empty());
}

TEST_CASE("file types are the keys with a leading dot, in upper case") {
    constexpr std::uint32_t kClassesRoot = 0x80000000;
    clsRegistry::CreateNewKey(kClassesRoot, ".veskT\xE4st");
    Texts list;
    clsRegistry::GetFileTypes(list);
    clsRegistry::DeleteKey(kClassesRoot, "", ".veskT\xE4st");
    CHECK(std::ranges::count(list, "VESKT\xC4ST") == 1);
    CHECK(std::ranges::count(list, "CLSID") == 0);
}

TEST_CASE_FIXTURE(RegistryTestKey, "no operation keeps a key open, not even one that throws") {
    Texts names, values;
    const auto runAll = [&] {
        CHECK_THROWS_AS(clsRegistry::SetKeyValue(kUser, kTestKey, "n", "no number", 4), Failure);
        CHECK_THROWS_AS(clsRegistry::SetKeyValue(kUser, kTestKey, "n", "no list", 7), Failure);
        clsRegistry::SetKeyValue(kUser, kTestKey, "n", "x", 1);
        clsRegistry::CreateNewKey(kUser, Below("below"));
        clsRegistry::EnumValues(kUser, kTestKey, names, values);
        (void)clsRegistry::EnumKeys(kUser, kTestKey);
        (void)clsRegistry::QueryValue(kUser, kTestKey, "n");
        clsRegistry::DeleteKey(kUser, kTestKey, "below");
        clsRegistry::DeleteValue(kUser, kTestKey, "n");
    };
    runAll();
    const std::uintptr_t before = NextHandle();
    for (int i = 0; i < 20; ++i)
        runAll();
    CHECK(NextHandle() <= before + 20); // nothing like one for each of the rounds
}
