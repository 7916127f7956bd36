#include "bench.h"

#include "base/modFile.h"

#include <windows.h>

#include <setupapi.h>

#include <set>
#include <stdexcept>

/// What is compared with the program's own reader of cabinets: the least that extracts one with
/// what the system has.
namespace vesk::bench {

namespace {

/// Where members go; their folders are made when they are new.
struct Target {
    std::string folder;
    std::set<std::string> made{};

    std::string PathOf(const std::string& name) {
        std::string path = folder + "\\" + name;
        if (made.insert(path.substr(0, path.rfind('\\'))).second)
            CreateFolderPath(path.substr(0, path.rfind('\\')));
        return path;
    }
};

UINT CALLBACK OnSetup(PVOID context, UINT notification, UINT_PTR first, UINT_PTR) {
    if (notification != SPFILENOTIFY_FILEINCABINET)
        return NO_ERROR;
    auto& member = *reinterpret_cast<FILE_IN_CABINET_INFO_A*>(first);
    const std::string path = static_cast<Target*>(context)->PathOf(member.NameInCabinet);
    path.copy(member.FullTargetName, sizeof member.FullTargetName - 1);
    member.FullTargetName[path.size()] = '\0';
    return FILEOP_DOIT;
}

} // namespace

void CabinetBySetup(const Arguments& arguments) {
    Target target{arguments.at(1)};
    BOOL done = FALSE;
    const double took =
        Timed([&] { done = SetupIterateCabinetA(arguments.at(0).c_str(), 0, OnSetup, &target); });
    if (done == FALSE)
        throw std::runtime_error("the setup library failed");
    Print({took});
}

} // namespace vesk::bench
