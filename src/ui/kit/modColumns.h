#pragma once

#include <vector>

namespace vesk {

/// Shares the width of a list between its columns: each gets what it wants, and the first one what
/// is left over. Where there is not room enough the widest are cut, down to one width for all of
/// them, so that no long text pushes the other columns out of sight.
/// @param wanted pixels for each column; at least one
/// @param total pixels there are
/// @return pixels for each column, together the total
std::vector<int> ShareWidth(std::vector<int> wanted, int total);

} // namespace vesk
