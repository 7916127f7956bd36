#include "bench.h"

#include "base/modFile.h"

#include <windows.h>

#include <fcntl.h>
#include <fdi.h>
#include <setupapi.h>

#include <cstdlib>
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

HANDLE HandleOf(INT_PTR file) {
    return reinterpret_cast<HANDLE>(file); // NOLINT: the library's type for a file
}
void* DIAMONDAPI Allocate(ULONG size) {
    return std::malloc(size);
}
void DIAMONDAPI Free(void* memory) {
    std::free(memory);
}
INT_PTR DIAMONDAPI Open(char* name, int, int) {
    return reinterpret_cast<INT_PTR>(
        CreateFileA(name, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
}
UINT DIAMONDAPI Read(INT_PTR file, void* memory, UINT count) {
    DWORD done = 0;
    return ReadFile(HandleOf(file), memory, count, &done, nullptr) != 0 ? done
                                                                        : static_cast<UINT>(-1);
}
UINT DIAMONDAPI Write(INT_PTR file, void* memory, UINT count) {
    DWORD done = 0;
    return WriteFile(HandleOf(file), memory, count, &done, nullptr) != 0 ? done
                                                                         : static_cast<UINT>(-1);
}
int DIAMONDAPI Close(INT_PTR file) {
    return CloseHandle(HandleOf(file)) != 0 ? 0 : -1;
}
long DIAMONDAPI Seek(INT_PTR file, long distance, int from) {
    return static_cast<long>(
        SetFilePointer(HandleOf(file), distance, nullptr, static_cast<DWORD>(from)));
}
INT_PTR DIAMONDAPI OnLibrary(FDINOTIFICATIONTYPE type, PFDINOTIFICATION what) {
    if (type == fdintCLOSE_FILE_INFO)
        return Close(what->hf) == 0 ? TRUE : FALSE;
    if (type != fdintCOPY_FILE)
        return 0;
    const std::string path = static_cast<Target*>(what->pv)->PathOf(what->psz1);
    return reinterpret_cast<INT_PTR>(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr,
                                                 CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
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

void CabinetByLibrary(const Arguments& arguments) {
    Target target{arguments.at(1)};
    std::string folder = arguments.at(0).substr(0, arguments.at(0).rfind('\\') + 1);
    std::string name = arguments.at(0).substr(folder.size());
    BOOL done = FALSE;
    const double took = Timed([&] {
        ERF error{};
        const HFDI library =
            FDICreate(Allocate, Free, Open, Read, Write, Close, Seek, cpuUNKNOWN, &error);
        done = FDICopy(library, name.data(), folder.data(), 0, OnLibrary, nullptr, &target);
        FDIDestroy(library);
    });
    if (done == FALSE)
        throw std::runtime_error("the cabinet library failed");
    Print({took});
}

} // namespace vesk::bench
