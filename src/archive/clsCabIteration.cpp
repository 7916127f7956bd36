#include "archive/clsCabIteration.h"

#include "archive/modCabDirectory.h"
#include "archive/modCabFailure.h"
#include "archive/modCabName.h"
#include "archive/modMemberPath.h"
#include "base/Failure.h"
#include "base/Problem.h"
#include "base/modWide.h"

#include <cstdint>
#include <utility>

namespace vesk {

bool clsCabIteration::busy_ = false;

clsCabIteration::clsCabIteration(const clsCab& cab, std::weak_ptr<CabEvents*> owner)
    : cabName_(cab.CabName),
      wanted_(FoldedName(Widen(cab.FileToExtract))),
      destination_(cab.DestinationFolder),
      owner_(std::move(owner)) {
    constexpr std::uint32_t kNoCabName = 0x800407A4;
    if (cabName_.empty())
        throw Failure(kNoCabName, "CabFile",
                      "You must set the CabName property before taking any action on the CabFile "
                      "object.");
    if (busy_)
        throw Failure(ERROR_BUSY, "CabFile",
                      "Another cabinet is being read; it must come to its end first.");
    busy_ = true;
}

clsCabIteration::~clsCabIteration() {
    busy_ = false;
}

CabDirectory clsCabIteration::ReadDirectory() {
    try {
        source_ = std::make_unique<clsFileSource>(cabName_);
        window_ = std::make_unique<clsByteWindow>(*source_);
        return ReadCabDirectory(*window_);
    } catch (const std::exception& failure) {
        ThrowCabFailure(CabNumberOf(failure), ReasonOf(failure));
    }
}

bool clsCabIteration::Matches(const CabEntry& entry) const {
    return wanted_.empty() || wanted_ == FoldedName(Widen(CabMemberName(entry)));
}

} // namespace vesk
