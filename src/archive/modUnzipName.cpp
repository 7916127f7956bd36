#include "archive/modUnzipName.h"

#include "base/modUtf8.h"
#include "base/modWide.h"

#include <string>
#include <utility>

namespace vesk {

std::wstring ZipEntryName(const ZipMember& member) {
    switch (member.encoding) {
    case NameEncoding::Ascii:
        return {member.name.begin(), member.name.end()};
    case NameEncoding::Utf8:
        if (auto name = FromUtf8(member.name))
            return std::move(*name);
        break;
    case NameEncoding::Oem:
        return WidenFromOem(member.name);
    case NameEncoding::Ansi:
        break;
    }
    return Widen(member.name);
}

} // namespace vesk
