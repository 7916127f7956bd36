// Tries to empty folders as a build would: one spelling a line on the standard input, what became
// of it on the standard output. "short PATH" tries the system's short name of a path; "hide PATH"
// marks one as the system's own; "into PATH" asks whether a build into \tree of the first drive
// writes there; "drive FILE" has Wine know a drive as the file says. All guarded places are on the
// drive named first, so that nothing else can come to harm when a guard fails.
#include "RecordingFrontEnd.h"
#include "base/UniqueHandle.h"
#include "base/modFile.h"
#include "base/modWide.h"
#include "build/clsInstallFolder.h"
#include "build/clsRemovableTree.h"
#include "build/modFileOperations.h"

#include <windows.h>

#include <winioctl.h>

#include <array>
#include <iostream>
#include <string>

using namespace vesk;

namespace {

clsFolderGuard GuardOf(const std::string& drive) {
    using Reach = GuardedPlace::Reach;
    const std::wstring root = Widen(drive) + L"\\";
    return clsFolderGuard({{root + L"program\\", "this program", Reach::Holding},
                           {root + L"cd\\", "the Windows source", Reach::Within},
                           {root + L"Windows", "Windows", Reach::Within},
                           {root + L"Program Files", "Program Files", Reach::Holding},
                           {root + L"users\\me", "your user profile", Reach::Siblings},
                           {root + L"homes\\gone", "a profile that is missing", Reach::Siblings},
                           {root + L"users\\me\\Documents", "your documents", Reach::Holding},
                           {root + L"users\\\x0416\\Letters", "your letters", Reach::Holding}},
                          {root + L"Program Files"});
}

std::string ShortName(const std::string& path) {
    std::array<char, MAX_PATH> name{};
    GetShortPathNameA(path.c_str(), name.data(), static_cast<DWORD>(name.size()));
    return name.data();
}

/// Has Wine's manager of drives do what a file asks for.
std::string TellOfDrive(const std::string& file) {
    const FileHandle manager(CreateFileA(R"(\\.\MountPointManager)", GENERIC_READ | GENERIC_WRITE,
                                         0, nullptr, OPEN_EXISTING, 0, nullptr));
    std::string told = ReadWholeFile(file);
    DWORD size = 0;
    return std::to_string(DeviceIoControl(
        manager.Get(), CTL_CODE('m', 32, METHOD_BUFFERED, FILE_READ_ACCESS | FILE_WRITE_ACCESS),
        told.data(), static_cast<DWORD>(told.size()), nullptr, 0, &size, nullptr));
}

std::string WhyNotInto(const std::string& path) {
    Catalogue catalogue;
    const BuildInputs inputs{
        clsInstallFolder(path.substr(0, 2) + "\\tree", clsFolderGuard({})), "", "", {}};
    const clsSha256List noList;
    try {
        RequireInTree(test::RecordingFrontEnd().Context(inputs, catalogue, noList), path);
        return "written";
    } catch (const Failure& failure) {
        return failure.what();
    }
}

std::string Outcome(const std::string& line, const clsFolderGuard& guard) {
    if (line.starts_with("hide "))
        return SetFileAttributesA(line.substr(5).c_str(),
                                  FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM) != FALSE
                   ? "hidden"
                   : "not hidden";
    if (line.starts_with("drive "))
        return TellOfDrive(line.substr(6));
    if (line.starts_with("into "))
        return WhyNotInto(line.substr(5));
    const std::string text = line.starts_with("short ") ? ShortName(line.substr(6)) : line;
    try {
        const clsInstallFolder folder(text, guard);
        if (const std::string why = folder.WhyKept(folder.Content()); !why.empty())
            return "kept\t" + why;
        for (const Failure& failure : clsRemovableTree::Of(folder).Remove())
            std::cerr << failure.what() << "\n";
        return "emptied\t" + folder.Path();
    } catch (const FolderRefused& refusal) {
        return std::string("refused\t") + refusal.what();
    }
}

} // namespace

int main(int, char** argv) {
    const clsFolderGuard guard = GuardOf(argv[1]);
    for (std::string line; std::getline(std::cin, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        std::cout << Outcome(line, guard) << std::endl;
    }
}
