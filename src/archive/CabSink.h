#pragma once

#include <cstddef>
#include <span>

namespace vesk {

/// Who takes the unpacked members of a cabinet. What a method throws ends the reading and reaches
/// the reader's caller.
class CabSink {
public:
    virtual ~CabSink() = default;

    /// A member's turn. @param place in the list given to the reader
    /// @return false to pass it over
    virtual bool Begin(std::size_t place) = 0;
    /// The next bytes of the member begun last, in small pieces.
    virtual void Write(std::span<const std::byte> bytes) = 0;
    /// Nothing more comes of it. It may lack bytes: then its data could not be unpacked.
    virtual void End() = 0;
};

} // namespace vesk
