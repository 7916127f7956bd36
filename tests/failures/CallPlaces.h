#pragma once

#include <winsock2.h> // which has to stand before the other

#include <windows.h>

#include <cstdint>
#include <iterator>

/// From where in the program the system is called. Takes no memory: calls for that are noted too.
constexpr std::uint64_t kNoMark = 14695981039346656037U;

/// Makes a value a part of a mark, the order counting.
template <class Value>
void Mark(std::uint64_t& mark, Value value) {
    mark = (mark ^ static_cast<std::uint64_t>(value)) * 1099511628211U;
}

struct Place {
    std::uint64_t mark; ///< Of the call and everything that called it; 0: free.
    const char* call;
    std::uint32_t first; ///< The number of the first call from there.
};
inline Place places[std::size_t{1} << 18];

/// Keeps the first call from each place. @param call the name that stands for the function
inline void NotePlace(const char* call, std::uint32_t number, bool isMemory) {
    void* frames[62];
    // Memory is taken everywhere: there the nearest callers are enough.
    const ULONG most = isMemory ? 8 : std::size(frames);
    const USHORT depth = RtlCaptureStackBackTrace(2, most, frames, nullptr);
    std::uint64_t mark = kNoMark + reinterpret_cast<std::uintptr_t>(call);
    for (USHORT i = 0; i < depth; ++i)
        Mark(mark, reinterpret_cast<std::uintptr_t>(frames[i]));
    mark |= 1;
    for (std::uint64_t i = mark >> 20;; ++i) {
        Place& place = places[i % std::size(places)];
        if (place.mark == mark)
            return;
        if (place.mark == 0) {
            place = {mark, call, number};
            return;
        }
    }
}
