#include "base/modRealPath.h"

#include <windows.h>

#include <doctest/doctest.h>

#include <array>

using namespace vesk;

// The rest is seen by what is refused to be emptied.
TEST_CASE("names of the system's core lead to paths") {
    std::array<wchar_t, MAX_PATH> device{};
    REQUIRE(QueryDosDeviceW(L"C:", device.data(), MAX_PATH) != 0);
    const std::wstring name = device.data();
    CHECK(PathOfDeviceName(name + L"\\") == L"C:\\");
    CHECK(PathOfDeviceName(name + L"\\a\\b c") == L"C:\\a\\b c");
    CHECK(PathOfDeviceName(name + L"0\\a").empty());
    CHECK(PathOfDeviceName(name).empty());
    CHECK(PathOfDeviceName(L"\\Device\\NamedPipe\\a").empty());
    CHECK(PathOfDeviceName(L"\\??\\Z:\\a") == L"Z:\\a");
    CHECK(PathOfDeviceName(L"\\??\\UNC\\server\\share\\a") == L"\\\\server\\share\\a");
    CHECK(PathOfDeviceName(L"\\??\\unix\\root").empty()); // in Wine, beyond all drives
    CHECK(PathOfDeviceName(L"").empty());
}
