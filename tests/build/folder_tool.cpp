// Tries to empty folders as a build would: one spelling a line on the standard input, what became
// of it on the standard output. "short PATH" tries the system's short name of a path; "hide PATH"
// marks one as the system's own. All guarded places are on the drive named first, so that nothing
// else can come to harm when a guard fails.
#include "base/modWide.h"
#include "build/clsInstallFolder.h"
#include "build/clsRemovableTree.h"

#include <windows.h>

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

std::string Outcome(const std::string& line, const clsFolderGuard& guard) {
    if (line.starts_with("hide "))
        return SetFileAttributesA(line.substr(5).c_str(),
                                  FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM) != FALSE
                   ? "hidden"
                   : "not hidden";
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
