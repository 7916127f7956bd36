#pragma once

#include "catalogue/modIniText.h"

#include <string>

namespace vesk {

/// What of a catalogue's file a reader by position would lose, cut, or take for something else: the
/// first fault, as a sentence without a full stop that names section and key; empty when the whole
/// file is read as it was written. A category that is gone altogether leaves no trace.
std::string CatalogueFault(const IniText& file);

/// The first thing in a catalogue's file that no reader by position looks at, and that is gone when
/// the file is written anew: "key X of section [Y]", or a section; empty when there is none.
std::string CatalogueSurplus(const IniText& file);

} // namespace vesk
