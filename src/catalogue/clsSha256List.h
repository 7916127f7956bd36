#pragma once

#include "base/Problem.h"
#include "catalogue/modSha256Text.h"

#include <functional>
#include <string>
#include <vector>

namespace vesk {

/// File name of the list in the program folder.
inline constexpr const char* kSha256FileName = "veskbuilder.sha256";

/// The digests that archives in the program folder must have besides their CRC-32, which anybody
/// can forge. Without the file there are none.
class clsSha256List {
public:
    clsSha256List() = default;

    /// Reads the list. @param programPath ends in "\"
    explicit clsSha256List(const std::string& programPath);

    /// What is wrong with the list: that it cannot be read, or lines of it.
    [[nodiscard]] const std::vector<Problem>& Problems() const { return problems_; }

    /// The digest that an archive must have; empty when the list does not name it.
    [[nodiscard]] std::string Expected(const std::string& archiveName) const;

private:
    Sha256Text text_;
    std::vector<Problem> problems_;
};

/// Writes an archive's digest into the list, if there is such a file.
/// @param programPath ends in "\" @param archiveName of a file in that folder
/// @param meanwhile called every few megabytes of it, so that a window stays alive
/// @return false when there is no list @throws Failure
bool UpdateSha256List(const std::string& programPath, const std::string& archiveName,
                      const std::function<void()>& meanwhile = {});

} // namespace vesk
