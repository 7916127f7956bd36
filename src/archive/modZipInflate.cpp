#include "archive/modZipInflate.h"

#include "archive/ArchiveProblem.h"

#define ZLIB_CONST
#include <zlib.h>

#include <new>

namespace vesk {

namespace {

class InflateState {
public:
    InflateState() {
        if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) // negative: no header around the data
            throw std::bad_alloc();
    }
    InflateState(const InflateState&) = delete;
    InflateState& operator=(const InflateState&) = delete;
    ~InflateState() { inflateEnd(&stream); }

    z_stream stream{};
};

} // namespace

void InflateInPieces(const std::function<std::span<const std::byte>()>& nextInput,
                     std::span<std::byte> buffer,
                     const std::function<void(std::span<const std::byte> piece)>& output) {
    InflateState state;
    z_stream& stream = state.stream;
    for (int result = Z_OK; result != Z_STREAM_END;) {
        if (stream.avail_in == 0) {
            const auto input = nextInput();
            stream.next_in = reinterpret_cast<const Bytef*>(input.data());
            stream.avail_in = static_cast<uInt>(input.size());
        }
        if (stream.avail_out == 0) {
            stream.next_out = reinterpret_cast<Bytef*>(buffer.data());
            stream.avail_out = static_cast<uInt>(buffer.size());
        }
        result = inflate(&stream, Z_NO_FLUSH);
        if (result == Z_MEM_ERROR)
            throw std::bad_alloc();
        if (result != Z_OK && result != Z_STREAM_END) // also for input that ends too early
            throw ZipContentProblem("its data is damaged");
        if (stream.avail_out == 0 || result == Z_STREAM_END)
            output(buffer.first(buffer.size() - stream.avail_out));
    }
}

} // namespace vesk
