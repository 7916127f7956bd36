/// save_tool FOLDER\ [COUNT]: saves the catalogue there as the editor does, with a name that grows
/// and shrinks, over and over (COUNT times, until it is killed). Returns 1 when a save fails.
#include "base/Failure.h"
#include "catalogue/modCatalogueFile.h"

#include <cstdio>
#include <cstdlib>

int main(int count, char** words) {
    using namespace vesk;
    const std::string folder = count > 1 ? words[1] : "";
    const long times = count > 2 ? std::strtol(words[2], nullptr, 10) : 1000000;
    Catalogue catalogue;
    if (LoadCatalogueReporting(folder, catalogue).state != CatalogueState::Whole)
        return 2;
    try {
        for (long i = 0; i < times; ++i) {
            catalogue.plugins[0].name =
                "Name " + std::string(static_cast<std::size_t>(i % 2 * 9000), 'x');
            SaveCatalogue(folder, catalogue);
        }
    } catch (const Failure& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
