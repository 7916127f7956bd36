#define DOCTEST_CONFIG_IMPLEMENT
#include "bench.h"

#include <doctest/doctest.h>

#include <cstdio>
#include <exception>
#include <map>
#include <stdexcept>

namespace vesk::bench {

void Print(const std::vector<double>& figures) {
    for (const double figure : figures)
        std::printf("%.3f ", figure);
    std::printf("\n");
}

namespace {

/// SECONDS: keeps the system's server processes alive, the desktop's included.
void Idle(const Arguments& arguments) {
    GetDesktopWindow();
    Sleep(static_cast<DWORD>(std::stoul(arguments.at(0))) * 1000);
}

const std::map<std::string, void (*)(const Arguments&)> kActions = {
    {"answers", Answers},
    {"cabinet", Cabinet},
    {"cabinet-setup", CabinetBySetup},
    {"checksum", Checksum},
    {"create", CreateFiles},
    {"first-window", FirstWindow},
    {"header", Header},
    {"idle", Idle},
    {"inf", Inf},
    {"inflate", InflateAll},
    {"load", LoadTheCatalogue},
    {"remove", RemoveTree},
    {"remove-bare", RemoveBare},
    {"save", SaveTheCatalogue},
    {"script", Script},
    {"unzip", Unzip},
};

} // namespace

} // namespace vesk::bench

int main(int argc, char** argv) {
    // The tests' driver of windows is used outside of tests.
    doctest::Context checks;
    checks.setAsDefaultForAssertsOutOfTestCases();
    checks.setAssertHandler([](const doctest::AssertData& failed) {
        throw std::runtime_error(std::string("does not hold: ") + failed.m_expr);
    });
    const vesk::bench::Arguments words(argv + 1, argv + argc);
    try {
        const auto action = vesk::bench::kActions.find(words.empty() ? "" : words.front());
        if (action == vesk::bench::kActions.end())
            return 64;
        action->second({words.begin() + 1, words.end()});
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
