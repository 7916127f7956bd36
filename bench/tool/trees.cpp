#include "bench.h"

#include "base/UniqueHandle.h"
#include "base/modWide.h"
#include "build/clsFolderGuard.h"
#include "build/clsInstallFolder.h"
#include "build/clsRemovableTree.h"
#include "catalogue/clsEditedFile.h"
#include "catalogue/modCatalogueFile.h"

#include <ranges>
#include <stdexcept>

namespace vesk::bench {

namespace {

/// What a folder holds: files are deleted at once, folders noted.
void EmptyFolder(const std::wstring& folder, std::vector<std::wstring>& folders) {
    WIN32_FIND_DATAW found{};
    const FindHandle search(FindFirstFileW((folder + L"\\*").c_str(), &found));
    if (!search)
        return;
    do {
        const std::wstring name = found.cFileName;
        if (name == L"." || name == L"..")
            continue;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            folders.push_back(folder + L"\\" + name);
        else
            DeleteFileW((folder + L"\\" + name).c_str());
    } while (FindNextFileW(search.Get(), &found) != 0);
}

/// TREE: removes it as a build does.
const Action kRemove("remove", [](const Arguments& arguments) {
    const clsInstallFolder folder(arguments.at(0), clsFolderGuard::OfSystem("C:\\none\\", ""));
    const clsRemovableTree tree = clsRemovableTree::Of(folder);
    std::vector<Failure> failures;
    const double took = Timed([&] { failures = tree.Remove([] {}); });
    if (!failures.empty())
        throw Failure(failures.front());
    return Figures{took};
});

/// TREE: removes it by a bare walk.
const Action kRemoveBare("remove-bare", [](const Arguments& arguments) {
    std::vector<std::wstring> folders{Widen(arguments.at(0))};
    const double took = Timed([&] {
        for (std::size_t i = 0; i < folders.size(); ++i) {
            const std::wstring folder = folders[i]; // the list grows
            EmptyFolder(folder, folders);
        }
        for (const std::wstring& folder : std::views::reverse(folders))
            RemoveDirectoryW(folder.c_str());
    });
    if (GetFileAttributesA(arguments.at(0).c_str()) != INVALID_FILE_ATTRIBUTES)
        throw std::runtime_error("the tree is still there");
    return Figures{took};
});

/// PROGRAMPATH: loads the catalogue in it.
const Action kLoad("load", [](const Arguments& arguments) {
    Catalogue catalogue;
    CatalogueLoad load;
    const double took = Timed([&] { load = LoadCatalogueReporting(arguments.at(0), catalogue); });
    if (load.state != CatalogueState::Whole)
        throw std::runtime_error(load.sentence);
    return Figures{took};
});

/// PROGRAMPATH: saves what it loads from it.
const Action kSave("save", [](const Arguments& arguments) {
    Catalogue catalogue;
    clsEditedFile file(arguments.at(0));
    if (file.Load(catalogue).state != CatalogueState::Whole)
        throw std::runtime_error("the catalogue is not whole");
    return Figures{Timed([&] { file.Save(catalogue); })};
});

} // namespace

} // namespace vesk::bench
