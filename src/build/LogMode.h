#pragma once

namespace vesk {

/// How a line enters the build log.
enum class LogMode {
    Line = 0,         ///< Shown and saved.
    LineAndBlank = 1, ///< The same, followed by an empty line.
    ListOnly = 2,     ///< Shown, not saved.
};

} // namespace vesk
