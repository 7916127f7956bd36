#pragma once

#include "catalogue/Catalogue.h"
#include "catalogue/modIniText.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vesk {

/// File name of the catalogue in the program folder.
inline constexpr const char* kCatalogueFileName = "veskbuilder.ini";

/// How much of the catalogue was read: all of it as it was written, some of it, nothing.
enum class CatalogueState { Whole, Partial, Absent };

/// What became of loading the catalogue.
struct CatalogueLoad {
    CatalogueState state = CatalogueState::Whole;

    /// What is wrong with the file, which it names, and what to do; empty for a whole one.
    std::string sentence;

    /// False only when it is certain that there is no such file, and one can be made.
    bool isThere = true;

    /// The part of the sentence that says what is wrong, without what to do and without a full
    /// stop.
    std::string fault = {};

    /// What the file holds besides a catalogue, by its name; empty for nothing.
    std::string surplus = {};
};

/// Fills the catalogue from the file in the program path (which ends in "\"), by position and not
/// by name, for a front end, which shows with what was read. A missing or empty file leaves it as
/// it was; what stands before a value that cannot be read (a tick that is no boolean, an entry cut
/// short) stays in it. Throws nothing.
CatalogueLoad LoadCatalogueReporting(const std::string& programPath, Catalogue& catalogue);

/// How often the system is asked for one file at most: that is more keys than the wizard's lists
/// can hold, and ten times as many would take a minute.
inline constexpr std::size_t kMostAsked = 4096;

/// All sections of a file as the system's profile functions read them, with a call for every key.
/// @param known the file's text when its lines are plain: then only the names are asked for
/// @param mostAsked so many calls at most
/// @throws Failure when it would take more
std::vector<IniSection> ReadSectionsThroughSystem(const std::string& path,
                                                  const IniText* known = nullptr,
                                                  std::size_t mostAsked = kMostAsked);

/// Derives install root and plug-in folder from install folder and path flag.
void DeriveInstallPaths(Catalogue& catalogue, const std::string& programFilesFolder);

/// Writes the catalogue file into the program path. The old file stays until the new one is
/// complete beside it. The text is exact: other tools compare it.
/// @throws Failure; the old file is then untouched.
void SaveCatalogue(const std::string& programPath, const Catalogue& catalogue);

} // namespace vesk
