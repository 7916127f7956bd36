#pragma once

#include "catalogue/Catalogue.h"
#include "catalogue/modCatalogueFile.h"

#include <string>

namespace vesk {

/// The catalogue's file in the hands of an editor, which must not lose what others wrote into it or
/// what it could not read itself.
class clsEditedFile {
public:
    /// @param programPath ends in "\"
    explicit clsEditedFile(std::string programPath);

    /// Loads the catalogue, and remembers what the file holds.
    CatalogueLoad Load(Catalogue& catalogue);

    /// What would be lost by a save, as a question for the user; empty when nothing would.
    [[nodiscard]] std::string LossBySaving() const;

    /// Writes the catalogue; from then on the file holds what this object wrote.
    /// @throws Failure; the old file is then untouched.
    void Save(const Catalogue& catalogue);

    /// True when the file holds all that was last loaded or saved.
    [[nodiscard]] bool IsWhole() const { return state_ == CatalogueState::Whole; }

    /// True when there is no file, or nothing in it.
    [[nodiscard]] bool HoldsNothing() const {
        return state_ == CatalogueState::Absent && !mayLose_;
    }

private:
    [[nodiscard]] std::string Path() const { return programPath_ + kCatalogueFileName; }

    std::string programPath_;
    std::string held_; ///< The file's text when it was last loaded or saved.
    CatalogueState state_ = CatalogueState::Absent;
    bool mayLose_ = false; ///< The file holds something that could not be read.
    std::string surplus_;  ///< What it holds besides the catalogue.
};

} // namespace vesk
