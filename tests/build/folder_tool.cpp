// Tries to empty folders as a build would: one spelling a line on the standard input, what became
// of it on the standard output. "short PATH" tries the system's short name of a path; "hide PATH"
// marks one as the system's own; "into PATH" asks whether a build into \tree of the first drive
// writes there; "cd D: FOLDER" has Wine take a folder of Linux for a CD, "disk D: FOLDER" for a
// disk. All guarded places are on the drive named first, so that nothing else can come to harm when
// a guard fails.
#include "RecordingFrontEnd.h"
#include "base/UniqueHandle.h"
#include "build/clsInstallFolder.h"
#include "build/clsRemovableTree.h"
#include "build/modFileOperations.h"

#include <windows.h>

#include <winioctl.h>

#include <array>
#include <cstddef>
#include <iostream>
#include <string>

using namespace vesk;

namespace {

clsFolderGuard GuardOf(const std::string& drive) {
    using Reach = GuardedPlace::Reach;
    const std::string root = drive + "\\";
    return clsFolderGuard({{root + "program\\", "this program", Reach::Holding},
                           {root + "cd\\", "the Windows source", Reach::Within},
                           {root + "Windows", "Windows", Reach::Within},
                           {root + "Program Files", "Program Files", Reach::Holding},
                           {root + "users\\me", "your user profile", Reach::Siblings},
                           {root + "users\\me\\Documents", "your documents", Reach::Holding}},
                          {root + "Program Files"});
}

std::string ShortName(const std::string& path) {
    std::array<char, MAX_PATH> name{};
    GetShortPathNameA(path.c_str(), name.data(), static_cast<DWORD>(name.size()));
    return name.data();
}

/// What Wine's manager of drives is told of one.
struct UnixDrive {
    ULONG size = sizeof(UnixDrive), type = 0, fileSystem = 0, serial = 0;
    ULONGLONG device = 0;
    WCHAR letter = 0;
    USHORT folderAt = 0, deviceAt = 0;
    std::array<char, MAX_PATH> folder{};
};

std::string DefineDrive(UINT type, const std::string& words) {
    UnixDrive drive;
    drive.type = type;
    drive.letter = static_cast<WCHAR>(words[0]);
    drive.folderAt = offsetof(UnixDrive, folder);
    words.copy(drive.folder.data(), MAX_PATH - 1, 3);
    const FileHandle manager(CreateFileA(R"(\\.\MountPointManager)", GENERIC_READ | GENERIC_WRITE,
                                         0, nullptr, OPEN_EXISTING, 0, nullptr));
    constexpr DWORD kDefine =
        CTL_CODE('m', 32, METHOD_BUFFERED, FILE_READ_ACCESS | FILE_WRITE_ACCESS);
    DWORD size = 0;
    return std::to_string(
        DeviceIoControl(manager.Get(), kDefine, &drive, sizeof drive, nullptr, 0, &size, nullptr));
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
    if (line.starts_with("cd "))
        return DefineDrive(DRIVE_CDROM, line.substr(3));
    if (line.starts_with("disk "))
        return DefineDrive(DRIVE_FIXED, line.substr(5));
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
