#include "ui/kit/modColumns.h"

#include "ExpectedText.h"

#include <vector>

using namespace vesk;

TEST_CASE("columns share the width there is, and none is pushed out of sight") {
    // What each wants, and the width for all => what each gets.
    test::CheckLines("columns", [](const std::string& line) {
        std::vector<int> wanted;
        for (const std::string& number : Split(line, ' '))
            wanted.push_back(std::stoi(number));
        const int total = wanted.back();
        wanted.pop_back();
        std::string given;
        for (const int width : ShareWidth(wanted, total))
            given += " " + std::to_string(width);
        return given.substr(1);
    });
}
