#pragma once

#include <windows.h>

#include <string>
#include <vector>

/// The Windows side of bench/run: each action does one piece of work and gives what it took. The
/// works that are compared with each other are actions of their own, so that the script can take
/// them in turn.
namespace vesk::bench {

using Arguments = std::vector<std::string>;
using Figures = std::vector<double>;

/// Milliseconds since some moment.
inline double Now() {
    LARGE_INTEGER frequency{};
    LARGE_INTEGER counter{};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&counter);
    return 1e3 * static_cast<double>(counter.QuadPart) / static_cast<double>(frequency.QuadPart);
}

/// Does the work. @return the milliseconds it took
template <class Work>
double Timed(Work work) {
    const double start = Now();
    work();
    return Now() - start;
}

/// Makes a piece of work one that the script can ask for by its name; its figures are printed in a
/// line.
struct Action {
    Action(const char* name, Figures (*work)(const Arguments&));
};

} // namespace vesk::bench
