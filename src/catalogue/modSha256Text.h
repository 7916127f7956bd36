#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

/// What a list of SHA-256 digests says, in the form that sha256sum writes and reads.
struct Sha256Text {
    /// Digest in lower case, by the file's name in lower case.
    std::map<std::string, std::string> digests;

    /// What is wrong with it, a sentence without a full stop each: "line 3 is not a digest and a
    /// name".
    std::vector<std::string> faults;
};

/// Takes such a list apart: lines of 64 hexadecimal digits, a blank, a blank or "*", and a name.
/// Empty lines, and those that begin with "#", say nothing. Of a name with two digests none counts.
/// A name with a folder before it, or a blank behind it, is no archive's and would never be looked
/// for.
Sha256Text ParseSha256Text(std::string_view text);

/// The list with this digest for a file: in place of the line that the name has, or behind the
/// last one. All other lines stay as they are.
std::string WithSha256(std::string_view text, const std::string& name, const std::string& digest);

} // namespace vesk
