#pragma once

#include "base/Problem.h"

#include <string>
#include <vector>

namespace vesk {

/// Makes the log file in the program path (which ends in "\") hold the text; an older file goes in
/// any case, an empty text writes none. @throws Failure
void SaveBuildLog(const std::string& programPath, const std::string& text);

/// The same for the file of the problems: a line each, and no file when there are none.
/// @throws Failure
void SaveProblems(const std::string& programPath, const std::vector<Problem>& problems);

} // namespace vesk
