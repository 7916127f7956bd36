#include "bench.h"

#include "archive/clsCRC.h"
#include "archive/clsCab.h"
#include "archive/clsFileSource.h"
#include "archive/clsZipDirectory.h"
#include "archive/modUnzip.h"
#include "base/UniqueHandle.h"
#include "base/modFile.h"

#include <setupapi.h>

#include <libdeflate.h>
#define ZLIB_CONST
#include <zlib.h>

#include <algorithm>
#include <memory>
#include <set>
#include <span>
#include <stdexcept>

namespace vesk::bench {

namespace {

volatile std::uint64_t result; // keeps the compiler from dropping the work

/// Reads a file in the best plain way: pieces that stay in the cache, no buffer in between.
/// @return milliseconds
template <class Use>
double TimeOfPieces(const std::string& path, Use use) {
    constexpr std::size_t kPiece = std::size_t{256} * 1024;
    return Timed([&] {
        const auto piece = std::make_unique_for_overwrite<std::uint64_t[]>(kPiece / 8);
        const FileHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
        for (DWORD count = 0;
             ReadFile(file.Get(), piece.get(), DWORD{kPiece}, &count, nullptr) != 0 && count != 0;)
            result = use(std::span<const std::uint64_t>(piece.get(), count / 8));
    });
}

/// FILE ROUNDS: for each round the milliseconds of only fetching the file, of looking at every
/// byte, and of CalculateFile.
const Action kChecksum("checksum", [](const Arguments& arguments) {
    const std::string& path = arguments.at(0);
    const auto sumOf = [](std::span<const std::uint64_t> piece) {
        std::uint64_t sum = 0;
        for (const std::uint64_t word : piece)
            sum += word;
        return sum;
    };
    Figures figures;
    for (int round = std::stoi(arguments.at(1)); round > 0; --round) {
        figures.push_back(TimeOfPieces(path, [](const auto& piece) { return piece.size(); }));
        figures.push_back(TimeOfPieces(path, sumOf));
        figures.push_back(Timed([&] { result = clsCRC().CalculateFile(path).size(); }));
    }
    return figures;
});

/// ARCHIVE TARGET: extracts a ZIP archive; milliseconds, and the longest time without progress.
const Action kUnzip("unzip", [](const Arguments& arguments) {
    double last = Now();
    double longest = 0;
    UnzipCallbacks callbacks;
    callbacks.progress = [&](double) {
        const double now = Now();
        longest = std::max(longest, now - last);
        last = now;
    };
    const double took = Timed([&] { UnzipFile(arguments.at(0), arguments.at(1), callbacks); });
    return Figures{took, longest};
});

/// The members of an archive, and room for the largest one.
struct Members {
    explicit Members(const std::string& path) {
        clsFileSource archive(path);
        clsZipDirectory directory(archive);
        for (std::size_t number = 0; number < directory.Count(); ++number)
            all.push_back(directory.Member(number));
        room.resize(static_cast<std::size_t>(std::ranges::max(all, {}, &ZipMember::size).size));
    }
    std::vector<ZipMember> all;
    std::string room;
};

/// Where members go; their folders are made when they are new.
struct Target {
    std::string folder;
    std::set<std::string> made{};

    std::string PathOf(std::string name) {
        std::ranges::replace(name, '/', '\\');
        std::string path = folder + "\\" + name;
        if (made.insert(path.substr(0, path.rfind('\\'))).second)
            CreateFolderPath(path.substr(0, path.rfind('\\')));
        return path;
    }
};

/// ARCHIVE TARGET: creates the members' files with as many bytes, out of one buffer.
const Action kCreate("create", [](const Arguments& arguments) {
    const Members members(arguments.at(0));
    return Figures{Timed([&] {
        Target target{arguments.at(1)};
        for (const ZipMember& member : members.all) {
            const FileHandle file(CreateFileA(target.PathOf(member.name).c_str(), GENERIC_WRITE, 0,
                                              nullptr, CREATE_NEW, FILE_ATTRIBUTE_ARCHIVE,
                                              nullptr));
            DWORD written = 0;
            WriteFile(file.Get(), members.room.data(), static_cast<DWORD>(member.size), &written,
                      nullptr);
        }
    })};
});

/// ARCHIVE: inflates and checks every member into one buffer.
const Action kInflate("inflate", [](const Arguments& arguments) {
    Members members(arguments.at(0));
    clsFileSource source(arguments.at(0));
    std::string archive(static_cast<std::size_t>(source.Size()), '\0');
    source.Read(0, std::as_writable_bytes(std::span(archive)));
    const std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)> inflater(
        libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    return Figures{Timed([&] {
        for (const ZipMember& member : members.all) {
            const auto size = static_cast<std::size_t>(member.size);
            libdeflate_deflate_decompress(inflater.get(), archive.data() + member.dataAt,
                                          static_cast<std::size_t>(member.packedSize),
                                          members.room.data(), size, nullptr);
            if (libdeflate_crc32(0, members.room.data(), size) != member.crc)
                throw std::runtime_error("damaged data");
        }
    })};
});

/// ARCHIVE TARGET: the largest member inflated by zlib as its manual shows it, checked by zlib's
/// checksum and written piece by piece.
const Action kZlib("zlib", [](const Arguments& arguments) {
    const Members members(arguments.at(0));
    const ZipMember& member = *std::ranges::max_element(members.all, {}, &ZipMember::size);
    Target target{arguments.at(1)};
    const std::string path = target.PathOf(member.name);
    const double took = Timed([&] {
        clsFileSource source(arguments.at(0));
        const FileHandle file(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                          FILE_ATTRIBUTE_ARCHIVE, nullptr));
        constexpr std::size_t kPiece = std::size_t{256} * 1024;
        std::vector<std::byte> packed(kPiece);
        std::vector<Bytef> plain(kPiece);
        z_stream stream{};
        inflateInit2(&stream, -MAX_WBITS);
        uLong crc = 0;
        std::uint64_t used = 0;
        for (int state = Z_OK; state == Z_OK;) {
            if (stream.avail_in == 0) {
                const auto count = static_cast<std::size_t>(
                    std::min<std::uint64_t>(kPiece, member.packedSize - used));
                source.Read(member.dataAt + used, std::span(packed).first(count));
                used += count;
                stream.next_in = reinterpret_cast<const Bytef*>(packed.data());
                stream.avail_in = static_cast<uInt>(count);
            }
            stream.next_out = plain.data();
            stream.avail_out = static_cast<uInt>(plain.size());
            state = inflate(&stream, Z_NO_FLUSH);
            const auto count = static_cast<uInt>(plain.size() - stream.avail_out);
            crc = crc32(crc, plain.data(), count);
            DWORD written = 0;
            WriteFile(file.Get(), plain.data(), count, &written, nullptr);
        }
        inflateEnd(&stream);
        if (crc != member.crc)
            throw std::runtime_error("damaged data");
    });
    return Figures{took};
});

/// CABINET TARGET: extracts with the program's own reader.
const Action kCabinet("cabinet", [](const Arguments& arguments) {
    return Figures{Timed([&] {
        clsCab cab;
        cab.CabName = arguments.at(0);
        cab.DestinationFolder = arguments.at(1);
        cab.Extract();
    })};
});

UINT CALLBACK OnSetup(PVOID context, UINT notification, UINT_PTR first, UINT_PTR) {
    if (notification != SPFILENOTIFY_FILEINCABINET)
        return NO_ERROR;
    auto& member = *reinterpret_cast<FILE_IN_CABINET_INFO_A*>(first);
    const std::string path = static_cast<Target*>(context)->PathOf(member.NameInCabinet);
    path.copy(member.FullTargetName, sizeof member.FullTargetName - 1);
    member.FullTargetName[path.size()] = '\0';
    return FILEOP_DOIT;
}

/// CABINET TARGET: the same with the setup library's iteration, the least that extracts a cabinet
/// with what the system has. Nothing is judged, and no time or attribute is set.
const Action kCabinetBySetup("cabinet-setup", [](const Arguments& arguments) {
    Target target{arguments.at(1)};
    return Figures{Timed([&] {
        if (SetupIterateCabinetA(arguments.at(0).c_str(), 0, OnSetup, &target) == FALSE)
            throw std::runtime_error("the setup library failed");
    })};
});

} // namespace

} // namespace vesk::bench
