/// replay ROUNDS FOLDER: gives a fuzzer's function each file of a folder, and so many drawn changes
/// of each one. Where there is no libFuzzer this stands in for it; it always draws the same.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

void Change(Bytes& bytes, const Bytes& other, std::mt19937& draw) {
    const auto below = [&](std::size_t limit) { return limit == 0 ? 0 : draw() % limit; };
    const std::size_t at = below(bytes.size() + 1);
    const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    switch (draw() % 5) {
    case 0: // another byte
        if (at < bytes.size())
            bytes[at] = static_cast<std::uint8_t>(draw());
        break;
    case 1: // one bit
        if (at < bytes.size())
            bytes[at] = static_cast<std::uint8_t>(bytes[at] ^ 1U << draw() % 8);
        break;
    case 2: // a part gone
        bytes.erase(place, bytes.begin() + static_cast<std::ptrdiff_t>(
                                               std::min(bytes.size(), at + 1 + below(16))));
        break;
    case 3: // extreme values
        for (std::size_t i = at; i < std::min(bytes.size(), at + 4); ++i)
            bytes[i] = at % 2 == 0 ? 0xFF : 0;
        break;
    default: { // a piece of another input
        const std::size_t from = below(other.size());
        const std::size_t count = std::min(other.size() - from, 1 + below(32));
        bytes.insert(place, other.begin() + static_cast<std::ptrdiff_t>(from),
                     other.begin() + static_cast<std::ptrdiff_t>(from + count));
    }
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
    std::vector<Bytes> inputs{{}};
    for (const auto& path : paths) {
        std::ifstream file(path, std::ios::binary);
        inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    std::mt19937 draw(1); // NOLINT(bugprone-random-generator-seed): the same each time
    std::size_t runs = 0;
    for (const Bytes& input : inputs) {
        LLVMFuzzerTestOneInput(input.data(), input.size());
        for (long round = 0; round < rounds; ++round, ++runs) {
            Bytes bytes = input;
            for (unsigned changes = 1 + draw() % 4; changes > 0; --changes)
                Change(bytes, inputs[draw() % inputs.size()], draw);
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        }
    }
    std::printf("%zu inputs, %zu changed ones\n", inputs.size(), runs);
    return inputs.size() > 1 ? 0 : 1;
}
