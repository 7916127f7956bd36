#pragma once

#include "archive/ByteSource.h"
#include "archive/CabDirectory.h"

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

/// Unpacks members of one folder, in one pass, with the system's cabinet library. That is what the
/// setup library's iteration of cabinets is made of. The iteration itself is not used: it knows
/// files by names of the ANSI code page and less than MAX_PATH characters only, drops what went
/// wrong in writing, and reads the cabinet's own headers, of which some crash it; with what a
/// caller has to add (moving files to their names, times) it takes a fifth longer.
/// @param entries as for CabFolderImage; none may have a refusal
/// @return false when the data turned out damaged: members whose End was not reached, or came
/// early, are not whole
/// @throws Failure, also for data that cannot be fetched, and what the sink throws
bool ReadCabFolder(ByteWindow& cabinet, const CabDirectory& directory, const CabFolder& folder,
                   std::span<const std::size_t> entries, CabSink& sink);

} // namespace vesk
