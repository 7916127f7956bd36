/// replay ROUNDS FOLDER: checks each file of a folder as an input, and so many drawn changes of
/// each one. Where there is no libFuzzer this stands in for it; it always draws the same. An input
/// that takes longer than 10 s ends it, and so does one that throws.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

void CheckInput(const std::string& text);

namespace {

void CheckInTime(const std::string& text) {
    constexpr auto kMost = std::chrono::seconds(10);
    const auto start = std::chrono::steady_clock::now();
    CheckInput(text);
    if (std::chrono::steady_clock::now() - start <= kMost)
        return;
    std::fprintf(stderr, "an input of %zu bytes took more than 10 s\n", text.size());
    std::abort();
}

void Change(std::string& text, const std::string& other, std::mt19937& draw) {
    const auto below = [&](std::size_t limit) { return limit == 0 ? 0 : draw() % limit; };
    const std::size_t at = below(text.size() + 1);
    switch (draw() % 5) {
    case 0: // another byte
        text.replace(at, at < text.size() ? 1 : 0, 1, static_cast<char>(draw()));
        break;
    case 1: // one bit
        if (at < text.size())
            text[at] = static_cast<char>(text[at] ^ 1U << draw() % 8);
        break;
    case 2: // a part gone
        text.erase(at, 1 + below(16));
        break;
    case 3: // extreme values
        text.replace(at, 4, 4, at % 2 == 0 ? '\xFF' : '\0');
        break;
    default: // a piece of another input
        text.insert(at, other.substr(below(other.size()), 1 + below(32)));
    }
}

} // namespace

int main(int count, char** words) {
    if (count != 3)
        return 2;
    const long rounds = std::strtol(words[1], nullptr, 10);
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(words[2]))
        paths.push_back(entry.path());
    std::ranges::sort(paths);
    std::vector<std::string> inputs(1);
    for (const auto& path : paths) {
        std::ifstream file(path, std::ios::binary);
        inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    std::mt19937 draw(1); // NOLINT(bugprone-random-generator-seed): the same each time
    for (const std::string& input : inputs) {
        CheckInTime(input);
        for (long round = 0; round < rounds; ++round) {
            std::string text = input;
            for (unsigned changes = 1 + draw() % 4; changes > 0; --changes)
                Change(text, inputs[draw() % inputs.size()], draw);
            CheckInTime(text);
        }
    }
    std::printf("%zu inputs\n", inputs.size());
    return inputs.size() > 1 ? 0 : 1;
}
