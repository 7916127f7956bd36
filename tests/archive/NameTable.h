#pragma once

#include "base/modText.h"

#include <string>
#include <utility>
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

/// Parts that are plain names.
inline const std::string kPlainParts =
    "a/A b/.hidden/a..b/.a.b/..x/com10.txt/COM/nul1/console/conin/lpt/auxiliary/prn_/xcon/com-1/"
    "nul-/~1/[x]/{}/%20/a,b;c/!/@/$/&/(1)/+/=/^/`/_/-/'/\xC3\xA4/\xC3\x9F/u\xCC\x88/\xE4\xB8\xAD/"
    "\xF0\x9F\x98\x80/\xD0\x96/\xCE\xA9/\xE2\x82\xAC/\xD7\x90/\xEF\xBC\xA1/\xEF\xBC\x9A/"
    "a\xEF\xBC\x9A"
    "b/\xEF\xBC\x8A/com\xEF\xBC\x91/a\xE2\x88\x96"
    "b/\xE2\x81\x84/d\xEF\xBC\x8E/\xEF\xBD\x9C/\xEF\xBC\x9C/com\xC2\xBC/a\xC2\xA0/"
    "\xE3\x81\x82.txt/con\xC3\xA9/conout$x/\xE2\x80\x8B/" +
    std::string(200, 'l');

/// Reasons, and parts that are refused for them wherever they stand.
inline const std::vector<std::pair<std::string, std::string>> kBadParts = {
    {"its name leads out of the folder", ".."},
    {"its name holds a character that no file name can",
     "C:/c:x/a:b/:/con:/a?b/*/st*r/a*b/</>/a|b/\"/a\"b/\x01/a\x02/a\x1F/a\nb/\t/\r"},
    {"its name is a device name",
     "nul/NUL.txt/con/CoN.a.b/aux/aux .x/prn/lpt1/LPT9.x/com0/com1 .x/com9.tar.gz/com\xC2\xB2/"
     "com\xC2\xB9.log/lpt\xC2\xB3/conin$/CONOUT$.a"},
    {"a part of its name ends in a dot or a blank", "dot./dots../blank /.../. / /nul ./a. /.. "},
    {kAnsiReason, "..\xE2\x88\x96up/..\xEF\xBC\x8Fup/\xEF\xBC\x8E\xEF\xBC\x8E"},
    {"its name is too long", std::string(256, 'l')},
};

/// All of them in every place of a name ("%"; "#" is a number of each name's own).
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
    for (const std::string& part : Split(kPlainParts, '/'))
        for (const char* form :
             {"#/%", "#/%z", "#/./%x/f", "./#//%_.txt", "#/d\\%y", "#\\sub/.\\%q//f.bin"})
            add(form, part, "");
    for (const auto& [reason, parts] : kBadParts)
        for (const std::string& part : Split(parts, '/'))
            for (const char* form : {"%", "#/%", "%/#", "#\\%\\f", "./%", "#//.//%"})
                add(form, part, reason);
    for (const char* absolute : {"/a", "\\a", "//s/x", R"(\\s\x)", "/", R"(\\?\C:\x)"})
        add(absolute, "", "its name is an absolute path");
    for (const char* nothing : {"", ".", "./.", ".//.\\."})
        add(nothing, "", "it has no name");
    return table;
}

} // namespace vesk::test
