#include "ui/kit/modColumns.h"

#include <algorithm>
#include <numeric>

namespace vesk {

namespace {

/// The width beyond which columns are cut so that all fit into the total.
int WidestOf(std::vector<int> wanted, int total) {
    std::ranges::sort(wanted);
    auto columns = static_cast<int>(wanted.size());
    for (const int width : wanted) {
        if (width > total / columns)
            return total / columns;
        total -= width;
        --columns;
    }
    return wanted.back();
}

} // namespace

std::vector<int> ShareWidth(std::vector<int> wanted, int total) {
    const int widest = WidestOf(wanted, total);
    for (int& width : wanted)
        width = std::min(width, widest);
    wanted.front() += total - std::accumulate(wanted.begin(), wanted.end(), 0);
    return wanted;
}

} // namespace vesk
