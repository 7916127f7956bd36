#pragma once

#include <cstdint>

namespace vesk {

/// A colour as the system has it: red in the lowest eight bits, then green, then blue.
using Colour = std::uint32_t;

/// How well a text can be read on a background: 1 (not at all) to 21 (black on white).
double ContrastOf(Colour text, Colour background);

/// The wanted colour of a text where it can be read (a contrast of 4.5 at least), the system's own
/// text colour elsewhere: on the dark backgrounds of high contrast.
Colour ReadableColour(Colour wanted, Colour systemText, Colour background);

/// True for a background on which a picture drawn for white looks like a white square.
bool IsDark(Colour background);

} // namespace vesk
