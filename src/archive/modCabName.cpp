#include "archive/modCabName.h"

#include "archive/modMemberName.h"
#include "base/modWide.h"

#include <windows.h>

#include <algorithm>
#include <unordered_set>

namespace vesk {

namespace {

std::optional<std::wstring> FromUtf8(const std::string& text) {
    const int size = static_cast<int>(text.size()); // at most 255
    std::wstring wide(text.size(), L'\0');          // never more units than bytes
    const int length =
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, wide.data(), size);
    if (length <= 0)
        return std::nullopt;
    wide.resize(static_cast<std::size_t>(length));
    return wide;
}

bool IsSeparator(wchar_t c) {
    return c == L'\\' || c == L'/';
}

/// The gate refuses names for characters of ASCII and three digits beyond it. So it judges a name
/// of which every other character is replaced by a harmless one.
bool PassesGate(const std::wstring& name) {
    std::string shadow;
    for (const wchar_t c : name) {
        const bool judged = c < 0x80 || c == 0xB9 || c == 0xB2 || c == 0xB3;
        shadow += judged ? static_cast<char>(c) : 'x';
    }
    return PathInside("", shadow).has_value();
}

std::wstring WithBackslashes(std::wstring name) {
    std::ranges::replace(name, L'/', L'\\');
    return name;
}

/// As file systems compare names.
std::wstring Folded(std::wstring name) {
    CharUpperBuffW(name.data(), static_cast<DWORD>(name.size()));
    return name;
}

} // namespace

std::wstring CabEntryName(const CabEntry& entry) {
    if (entry.IsUtf8())
        if (auto name = FromUtf8(entry.name))
            return *name;
    return Widen(entry.name);
}

std::string CabMemberName(const CabEntry& entry) {
    return Narrowed(CabEntryName(entry));
}

std::string CabDisplayName(const CabEntry& entry) {
    return Narrowed(WithBackslashes(CabEntryName(entry)));
}

bool IsCabFolderEntry(const CabEntry& entry) {
    const bool named = entry.name.ends_with('\\') || entry.name.ends_with('/');
    return entry.size == 0 && (named || (entry.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0);
}

std::optional<std::wstring> CabTargetName(const CabEntry& entry) {
    std::wstring name = CabEntryName(entry);
    if (!PassesGate(name))
        return std::nullopt;
    if (IsSeparator(name.back())) {
        if (!IsCabFolderEntry(entry))
            return std::nullopt;
        name.pop_back();
    }
    return WithBackslashes(std::move(name));
}

void JudgeCabNames(CabDirectory& directory) {
    std::unordered_set<std::wstring> taken;
    for (CabEntry& entry : directory.entries) {
        if (!entry.refusal.empty())
            continue;
        auto name = CabTargetName(entry);
        if (!name)
            entry.refusal = "its name is not a plain one below the target folder";
        else if (!taken.insert(Folded(std::move(*name))).second)
            entry.refusal = "another member has the same name";
        entry.leftOut = !entry.refusal.empty();
    }
}

} // namespace vesk
