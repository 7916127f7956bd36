#include "archive/clsCRC.h"
#include "archive/modUnzip.h"
#include "base/UniqueHandle.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <string_view>

/// The Windows side of bench/archives.
///   archives_tool checksum FILE          medians of seven in milliseconds, taken in turn: only
///                                        fetching the file, looking at every byte, CalculateFile
///   archives_tool unzip ARCHIVE TARGET   extracts; the script takes the time of the whole process;
///                                        prints the longest time in milliseconds in which no
///                                        progress was told
///   archives_tool idle SECONDS           keeps the system's server processes alive
namespace {

/// Reads a file in the best plain way: pieces that stay in the cache, no buffer in between.
template <class Use>
void ForEachPiece(const std::string& path, Use use) {
    constexpr std::size_t kPiece = std::size_t{256} * 1024;
    const auto piece = std::make_unique_for_overwrite<std::uint64_t[]>(kPiece / 8);
    const vesk::FileHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                            OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    DWORD count = 0;
    while (ReadFile(file.Get(), piece.get(), static_cast<DWORD>(kPiece), &count, nullptr) != 0 &&
           count != 0)
        use(std::span<const std::uint64_t>(piece.get(), count / 8));
}

volatile std::uint64_t result; // keeps the compiler from dropping the work

void Fetch(const std::string& path) {
    ForEachPiece(path, [](std::span<const std::uint64_t> piece) { result = piece.size(); });
}
void LookAtEveryByte(const std::string& path) {
    ForEachPiece(path, [](std::span<const std::uint64_t> piece) {
        std::uint64_t sum = 0;
        for (const std::uint64_t word : piece)
            sum += word;
        result = sum;
    });
}
void Checksum(const std::string& path) {
    result = vesk::clsCRC().CalculateFile(path).size();
}

double Milliseconds() {
    LARGE_INTEGER frequency{};
    LARGE_INTEGER counter{};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&counter);
    return 1e3 * static_cast<double>(counter.QuadPart) / static_cast<double>(frequency.QuadPart);
}

void BenchChecksum(const std::string& path) {
    constexpr std::array kActions = {Fetch, LookAtEveryByte, Checksum};
    std::array<std::array<double, 7>, kActions.size()> times{};
    for (std::size_t run = 0; run < times[0].size(); ++run)
        for (std::size_t action = 0; action < kActions.size(); ++action) {
            const double start = Milliseconds();
            kActions[action](path);
            times[action][run] = Milliseconds() - start;
        }
    for (auto& series : times) {
        std::ranges::sort(series);
        std::printf("%.3f ", series[series.size() / 2]);
    }
}

void Unzip(const std::string& archive, const std::string& target) {
    double last = Milliseconds();
    double longest = 0;
    vesk::UnzipCallbacks callbacks;
    callbacks.progress = [&](double) {
        const double now = Milliseconds();
        longest = std::max(longest, now - last);
        last = now;
    };
    vesk::UnzipFile(archive, target, callbacks);
    std::printf("%.1f", longest);
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view mode = argc > 1 ? argv[1] : "";
    if (mode == "idle" && argc == 3)
        Sleep(static_cast<DWORD>(std::stoul(argv[2])) * 1000);
    else if (mode == "unzip" && argc == 4)
        Unzip(argv[2], argv[3]);
    else if (mode == "checksum" && argc == 3)
        BenchChecksum(argv[2]);
    else
        return 64;
    return 0;
}
