#include "archive/modCabReader.h"

#include "archive/modCabImage.h"
#include "base/Failure.h"
#include "base/modSystemLibrary.h"

#include <windows.h>

#include <fcntl.h>
#include <fdi.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <exception>
#include <list>
#include <new>
#include <string>
#include <string_view>

namespace vesk {

namespace {

/// The image of one folder as the library's file, and what the library says, for the sink. The
/// library's file functions are handed no object of ours: one run at a time is at work.
class FolderRun {
public:
    FolderRun(clsByteWindow& cabinet, const CabDirectory& directory, const CabFolder& folder,
              std::span<const std::size_t> entries, CabSink& sink)
        : cabinet_(cabinet),
          folder_(folder),
          image_(CabFolderImage(directory, folder, entries)),
          sink_(sink) {}
    FolderRun(const FolderRun&) = delete;
    FolderRun& operator=(const FolderRun&) = delete;
    ~FolderRun() { running_ = nullptr; }

    void Run() {
        running_ = this;
        constexpr const char* kLibrary = "cabinet.dll";
        static const auto create = SystemFunction<decltype(&FDICreate)>(kLibrary, "FDICreate");
        static const auto copy = SystemFunction<decltype(&FDICopy)>(kLibrary, "FDICopy");
        static const auto destroy = SystemFunction<decltype(&FDIDestroy)>(kLibrary, "FDIDestroy");
        if (create == nullptr || copy == nullptr || destroy == nullptr)
            throw Failure(ERROR_MOD_NOT_FOUND, "CabFile", "the system has no cabinet library");
        ERF error{};
        const HFDI library =
            create(&Allocate, &Free, &Open, &Read, &Write, &Close, &Seek, cpuUNKNOWN, &error);
        if (library == nullptr)
            throw Failure(ERROR_NOT_ENOUGH_MEMORY, "CabFile", "not enough memory");
        std::string name = "cabinet"; // the library wants to write to them
        std::string path;
        copy(library, name.data(), path.data(), 0, &Notify, nullptr, nullptr);
        destroy(library);
        if (failure_)
            std::rethrow_exception(failure_);
    }

private:
    struct Input {
        std::uint64_t at = 0;
    };

    static void* DIAMONDAPI Allocate(ULONG size) { return ::operator new(size, std::nothrow); }
    static void DIAMONDAPI Free(void* memory) { ::operator delete(memory); }

    static INT_PTR DIAMONDAPI Open(char*, int, int) {
        return Guarded<INT_PTR>(-1, [] {
            running_->inputs_.emplace_back();
            return reinterpret_cast<INT_PTR>(&running_->inputs_.back());
        });
    }
    static int DIAMONDAPI Close(INT_PTR) { return 0; }

    static UINT DIAMONDAPI Read(INT_PTR file, void* memory, UINT count) {
        return Guarded<UINT>(static_cast<UINT>(-1), [&] {
            Input& input = *reinterpret_cast<Input*>(file);
            const UINT read = running_->Fetch(input.at, static_cast<std::byte*>(memory), count);
            input.at += read;
            return read;
        });
    }

    static UINT DIAMONDAPI Write(INT_PTR, void* memory, UINT count) {
        return Guarded<UINT>(static_cast<UINT>(-1), [&] {
            running_->sink_.Write({static_cast<const std::byte*>(memory), count});
            return count;
        });
    }

    static long DIAMONDAPI Seek(INT_PTR file, long distance, int from) {
        Input& input = *reinterpret_cast<Input*>(file);
        std::int64_t at = distance;
        if (from == SEEK_CUR)
            at += static_cast<std::int64_t>(input.at);
        else if (from == SEEK_END)
            at += static_cast<std::int64_t>(running_->Size());
        if (at < 0 || at > LONG_MAX)
            return -1;
        input.at = static_cast<std::uint64_t>(at);
        return static_cast<long>(at);
    }

    static INT_PTR DIAMONDAPI Notify(FDINOTIFICATIONTYPE type, PFDINOTIFICATION what) {
        return Guarded<INT_PTR>(-1, [&]() -> INT_PTR {
            switch (type) {
            case fdintCOPY_FILE:
                if (!running_->sink_.Begin(PlaceIn(what->psz1)))
                    return 0;
                return reinterpret_cast<INT_PTR>(&running_->output_);
            case fdintCLOSE_FILE_INFO:
                running_->sink_.End();
                return TRUE;
            case fdintNEXT_CABINET: // the image has none; anything but -1 would be looked for
                return -1;
            default:
                return 0;
            }
        });
    }

    /// The image's names are numbers.
    static std::size_t PlaceIn(std::string_view name) {
        std::size_t place = 0;
        std::from_chars(name.data(), name.data() + name.size(), place);
        return place;
    }

    /// No exception may travel through the library's frames, and after one nothing more is done.
    template <class Result, class Action>
    static Result Guarded(Result failed, Action action) {
        if (running_->failure_)
            return failed;
        try {
            return action();
        } catch (...) {
            running_->failure_ = std::current_exception();
            return failed;
        }
    }

    [[nodiscard]] std::uint64_t Size() const { return image_.size() + folder_.goodPacked; }

    UINT Fetch(std::uint64_t at, std::byte* memory, UINT count) {
        UINT done = 0;
        while (done < count && at + done < Size()) {
            const std::span<const std::byte> bytes = BytesAt(at + done, count - done);
            if (bytes.empty())
                break;
            std::memcpy(memory + done, bytes.data(), bytes.size());
            done += static_cast<UINT>(bytes.size());
        }
        return done;
    }

    std::span<const std::byte> BytesAt(std::uint64_t at, std::size_t count) {
        if (at < image_.size())
            return std::as_bytes(std::span(image_))
                .subspan(static_cast<std::size_t>(at))
                .first(std::min(count, image_.size() - static_cast<std::size_t>(at)));
        const std::uint64_t inData = at - image_.size();
        const auto left = static_cast<std::size_t>(
            std::min<std::uint64_t>(folder_.goodPacked - inData, clsByteWindow::kLargestPiece));
        return cabinet_.View(folder_.dataAt + inData, std::min(count, left));
    }

    static FolderRun* running_;

    clsByteWindow& cabinet_;
    const CabFolder& folder_;
    const std::string image_;
    CabSink& sink_;
    std::list<Input> inputs_;
    char output_ = 0; ///< Its address is the handle of every member.
    std::exception_ptr failure_;
};

FolderRun* FolderRun::running_ = nullptr;

} // namespace

void ReadCabFolder(clsByteWindow& cabinet, const CabDirectory& directory, const CabFolder& folder,
                   std::span<const std::size_t> entries, CabSink& sink) {
    FolderRun(cabinet, directory, folder, entries, sink).Run();
}

} // namespace vesk
