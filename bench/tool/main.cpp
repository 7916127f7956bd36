#define DOCTEST_CONFIG_IMPLEMENT
#include "bench.h"

#include <doctest/doctest.h>

#include <cstdio>
#include <exception>
#include <map>
#include <stdexcept>

namespace vesk::bench {

namespace {

using Works = std::map<std::string, Figures (*)(const Arguments&)>;

Works& KnownWorks() {
    static Works works;
    return works;
}

/// SECONDS: keeps the system's server processes alive, the desktop's included.
const Action kIdle("idle", [](const Arguments& arguments) {
    GetDesktopWindow();
    Sleep(static_cast<DWORD>(std::stoul(arguments.at(0))) * 1000);
    return Figures();
});

} // namespace

Action::Action(const char* name, Figures (*work)(const Arguments&)) {
    KnownWorks()[name] = work;
}

} // namespace vesk::bench

int main(int argc, char** argv) {
    // The tests' driver of windows is used outside of tests.
    doctest::Context checks;
    checks.setAsDefaultForAssertsOutOfTestCases();
    checks.setAssertHandler([](const doctest::AssertData& failed) {
        throw std::runtime_error(std::string("does not hold: ") + failed.m_expr);
    });
    try {
        auto* const work = vesk::bench::KnownWorks().at(argc < 2 ? "" : argv[1]);
        for (const double figure : work({argv + 2, argv + argc}))
            std::printf("%.3f ", figure);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
