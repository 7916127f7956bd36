#include "catalogue/clsEditedFile.h"

#include "base/modFile.h"

#include <windows.h>

#include <utility>

namespace vesk {

namespace {

bool IsEmptyFile(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    return GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data) != 0 &&
           (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && data.nFileSizeHigh == 0 &&
           data.nFileSizeLow == 0;
}

} // namespace

clsEditedFile::clsEditedFile(std::string programPath) : programPath_(std::move(programPath)) {}

CatalogueLoad clsEditedFile::Load(Catalogue& catalogue) {
    held_ = ReadWholeFile(Path());
    CatalogueLoad load = LoadCatalogueReporting(programPath_, catalogue);
    state_ = load.state;
    mayLose_ = state_ != CatalogueState::Whole && load.isThere && !IsEmptyFile(Path());
    surplus_ = load.surplus;
    return load;
}

std::string clsEditedFile::LossBySaving() const {
    if (!FileExists(Path()))
        return {};
    if (ReadWholeFile(Path()) != held_)
        return "The catalogue file was changed by another program since it was read here. "
               "Overwrite it ?";
    if (mayLose_)
        return "Not all of the catalogue file could be read. What was not read is lost when it "
               "is saved. Save it ?";
    if (!surplus_.empty())
        return "The catalogue file holds something besides the catalogue, " + surplus_ +
               ", which is lost when it is saved. Save it ?";
    return {};
}

void clsEditedFile::Save(const Catalogue& catalogue) {
    SaveCatalogue(programPath_, catalogue);
    held_ = ReadWholeFile(Path());
    state_ = CatalogueState::Whole;
    mayLose_ = false;
    surplus_.clear();
}

} // namespace vesk
