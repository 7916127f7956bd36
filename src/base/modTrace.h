#pragma once

#include <string>

namespace vesk {

/// Receives one diagnostic line, without a line end.
using TraceSink = void (*)(const std::string& line);

/// Names the function that receives diagnostic lines; null (the default) drops them.
void SetTraceSink(TraceSink sink);

/// Hands one diagnostic line to the sink. Never for users: they read the build log.
void Trace(const std::string& line);

} // namespace vesk
