#pragma once

#include <cstddef>
#include <functional>
#include <span>

namespace vesk {

/// Inflates a raw deflate stream of any size in bounded memory.
/// @param nextInput gives the next packed bytes, nothing at their end
/// @param buffer where a piece of the content is put before it is handed out
/// @param output takes the pieces in order; all but the last fill the buffer
/// @throws ZipContentProblem for damaged data, std::bad_alloc
void InflateInPieces(const std::function<std::span<const std::byte>()>& nextInput,
                     std::span<std::byte> buffer,
                     const std::function<void(std::span<const std::byte> piece)>& output);

} // namespace vesk
