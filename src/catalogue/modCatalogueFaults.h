#pragma once

#include "catalogue/modIniText.h"

#include <string>

namespace vesk {

/// What of a catalogue's file a reader by position would lose, cut, or take for something else: the
/// first fault, as a sentence without a full stop that names section and key; empty when the whole
/// file is read as it was written. A category that is gone altogether leaves no trace.
std::string CatalogueFault(const IniText& file);

} // namespace vesk
