#pragma once

#include <windows.h>

#include <string>
#include <vector>

/// The Windows side of bench/run: each action does one piece of work and prints what it took. The
/// works that are compared with each other are actions of their own, so that the script can take
/// them in turn.
namespace vesk::bench {

using Arguments = std::vector<std::string>;

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

/// Prints figures in one line, which the script reads.
void Print(const std::vector<double>& figures);

/// FILE ROUNDS: a line for each round, the milliseconds of only fetching the file, of looking at
/// every byte, and of CalculateFile.
void Checksum(const Arguments& arguments);

/// ARCHIVE TARGET: extracts a ZIP archive; milliseconds, and the longest time without progress.
void Unzip(const Arguments& arguments);

/// ARCHIVE TARGET: creates the members' files with as many bytes, out of one buffer.
void CreateFiles(const Arguments& arguments);

/// ARCHIVE: inflates and checks every member into one buffer.
void InflateAll(const Arguments& arguments);

/// CABINET TARGET: extracts with the program's own reader.
void Cabinet(const Arguments& arguments);

/// CABINET TARGET: the same with the setup library's iteration. Nothing is judged, and no time or
/// attribute is set.
void CabinetBySetup(const Arguments& arguments);

/// TREE: removes it as a build does, and by a bare walk.
void RemoveTree(const Arguments& arguments);
void RemoveBare(const Arguments& arguments);

/// PROGRAMPATH: loads the catalogue in it, or saves what it loads from it.
void LoadTheCatalogue(const Arguments& arguments);
void SaveTheCatalogue(const Arguments& arguments);

/// FILE: runs it as a script.
void Script(const Arguments& arguments);

/// TREE INF: makes the edits of a build to an INF file in the tree.
void Inf(const Arguments& arguments);

/// BYTES: finds the end of a header that comes in pieces of one byte.
void Header(const Arguments& arguments);

/// PROGRAM: starts it, and ends it; milliseconds until its window answers.
void FirstWindow(const Arguments& arguments);

/// WIZARD TREE: lets the wizard build into the tree; the milliseconds of its window's
/// longest answer and of the whole build.
void Answers(const Arguments& arguments);

} // namespace vesk::bench
