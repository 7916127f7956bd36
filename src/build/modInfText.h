#pragma once

#include <optional>
#include <string>
#include <string_view>

/// What the INF edits do to text, apart from the files.
namespace vesk {

/// The INF text with its "[Append]" header and the "nu2menu.xml," behind it commented out; nothing
/// when there is nothing to do, so that the file stays as it is byte for byte.
std::optional<std::string> CommentedOutAppendMenu(std::string_view text);

/// File name of the plug-in's own menu that the "[Append]" section names; empty when it names none.
std::string AppendMenuFile(std::string_view text);

/// A plug-in name without the digits and signs in front of it: "1. My Tool" gives "My Tool". The
/// scan stops at the first blank, so "01 - Tool" keeps its dash.
std::string StripLeadingNumbering(std::string_view name);

/// The name with the category prefix in front; nothing when its first word has the prefix already.
std::optional<std::string> PrefixedName(std::string_view name, std::string_view prefix);

/// True when an item of the comma-separated list equals the code. Items are not trimmed: "0, 1"
/// holds "0" and " 1", and the latter never matches. Plug-ins in use rely on that.
bool ListHolds(std::string_view list, std::string_view code);

/// Name of a category's heading in the plug-in list.
/// @throws Failure for a title of more than 50 characters
std::string SeparatorName(std::string_view prefix, std::string_view title);

} // namespace vesk
