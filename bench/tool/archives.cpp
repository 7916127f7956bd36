#include "bench.h"

#include "archive/clsCRC.h"
#include "archive/clsCab.h"
#include "archive/clsFileSource.h"
#include "archive/clsZipDirectory.h"
#include "archive/modUnzip.h"
#include "base/UniqueHandle.h"
#include "base/modFile.h"

#include <libdeflate.h>

#include <algorithm>
#include <memory>
#include <set>
#include <span>
#include <stdexcept>
#include <vector>

namespace vesk::bench {

namespace {

/// Reads a file in the best plain way: pieces that stay in the cache, no buffer in between.
template <class Use>
void ForEachPiece(const std::string& path, Use use) {
    constexpr std::size_t kPiece = std::size_t{256} * 1024;
    const auto piece = std::make_unique_for_overwrite<std::uint64_t[]>(kPiece / 8);
    const FileHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
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

std::vector<ZipMember> MembersOf(const std::string& path) {
    clsFileSource archive(path);
    clsZipDirectory directory(archive);
    std::vector<ZipMember> members;
    for (std::size_t number = 0; number < directory.Count(); ++number)
        members.push_back(directory.Member(number));
    return members;
}

/// Path of a member in the target folder; its folders are made when they are new.
std::string PathFor(const std::string& target, std::string name, std::set<std::string>& folders) {
    std::ranges::replace(name, '/', '\\');
    std::string path = target + "\\" + name;
    if (folders.insert(path.substr(0, path.rfind('\\'))).second)
        CreateFolderPath(path.substr(0, path.rfind('\\')));
    return path;
}

} // namespace

void Checksum(const Arguments& arguments) {
    const std::string& path = arguments.at(0);
    for (int round = std::stoi(arguments.at(1)); round > 0; --round)
        Print({Timed([&] { Fetch(path); }), Timed([&] { LookAtEveryByte(path); }),
               Timed([&] { result = clsCRC().CalculateFile(path).size(); })});
}

void Unzip(const Arguments& arguments) {
    double last = Now();
    double longest = 0;
    UnzipCallbacks callbacks;
    callbacks.progress = [&](double) {
        const double now = Now();
        longest = std::max(longest, now - last);
        last = now;
    };
    const double took = Timed([&] { UnzipFile(arguments.at(0), arguments.at(1), callbacks); });
    Print({took, longest});
}

void CreateFiles(const Arguments& arguments) {
    const std::vector<ZipMember> members = MembersOf(arguments.at(0));
    const std::uint64_t largest = std::ranges::max(members, {}, &ZipMember::size).size;
    const std::vector<char> content(static_cast<std::size_t>(largest), 'x');
    Print({Timed([&] {
        std::set<std::string> folders;
        for (const ZipMember& member : members) {
            const std::string path = PathFor(arguments.at(1), member.name, folders);
            const FileHandle file(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                              FILE_ATTRIBUTE_ARCHIVE, nullptr));
            DWORD written = 0;
            WriteFile(file.Get(), content.data(), static_cast<DWORD>(member.size), &written,
                      nullptr);
        }
    })});
}

void InflateAll(const Arguments& arguments) {
    const std::vector<ZipMember> members = MembersOf(arguments.at(0));
    const std::uint64_t largest = std::ranges::max(members, {}, &ZipMember::size).size;
    const std::string archive = ReadWholeFile(arguments.at(0));
    const auto buffer =
        std::make_unique_for_overwrite<std::byte[]>(static_cast<std::size_t>(largest));
    const std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)> inflater(
        libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    Print({Timed([&] {
        for (const ZipMember& member : members) {
            const auto size = static_cast<std::size_t>(member.size);
            libdeflate_deflate_decompress(inflater.get(), archive.data() + member.dataAt,
                                          static_cast<std::size_t>(member.packedSize), buffer.get(),
                                          size, nullptr);
            if (libdeflate_crc32(0, buffer.get(), size) != member.crc)
                throw std::runtime_error("damaged data");
        }
    })});
}

void Cabinet(const Arguments& arguments) {
    Print({Timed([&] {
        clsCab cab;
        cab.CabName = arguments.at(0);
        cab.DestinationFolder = arguments.at(1);
        cab.Extract();
    })});
}

} // namespace vesk::bench
