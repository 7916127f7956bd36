#pragma once

#include "ExpectedText.h"

#include <string>
#include <vector>

namespace vesk::test {

/// A member's name in UTF-8, and what becomes of it in an archive of any kind.
struct TableName {
    std::string name;
    std::string path;   ///< Below the target folder; empty when the name is refused.
    std::string reason; ///< Why it is refused.
};

/// Only for what a program in the code page would make of the name: the gate itself lets it pass.
inline const std::string kAnsiReason =
    "its name leads out of the folder for programs in the code page";

/// The parts of tests/data/member_names.txt in every place of a name ("%"; "#" is a number of each
/// name's own). The file tells the reason in front of the parts that are refused for it; those in
/// its second line are plain names.
inline std::vector<TableName> NameTable() {
    std::vector<TableName> table;
    const auto add = [&](const std::string& form, const std::string& part,
                         const std::string& reason) {
        const std::string number = std::to_string(table.size());
        const std::string name = ReplaceAll(ReplaceAll(form, "#", number), "%", part);
        std::string path = "/" + ReplaceAll(name, "\\", "/"); // whose parts all mean something
        for (const char* nothing : {"//", "/./"})
            path = ReplaceAll(path, nothing, "/");
        table.push_back(
            {name, reason.empty() ? ReplaceAll(path.substr(1), "/", "\\") : "", reason});
    };
    const std::vector<std::string> lines = Split(ExpectedText("member_names"), '\n');
    for (const std::string& part : Split(Unescaped(lines.at(1)), '/'))
        for (const char* form :
             {"#/%", "#/%z", "#/./%x/f", "./#//%_.txt", "#/d\\%y", "#\\sub/.\\%q//f.bin"})
            add(form, part, "");
    for (std::size_t i = 2; i + 1 < lines.size(); i += 2)
        for (const std::string& part : Split(Unescaped(lines[i + 1]), '/'))
            for (const char* form : {"%", "#/%", "%/#", "#\\%\\f", "./%", "#//.//%"})
                add(form, part, lines[i]);
    for (const char* absolute : {"/a", "\\a", "//s/x", R"(\\s\x)", "/", R"(\\?\C:\x)"})
        add(absolute, "", "its name is an absolute path");
    for (const char* nothing : {"", ".", "./.", ".//.\\."})
        add(nothing, "", "it has no name");
    return table;
}

} // namespace vesk::test
