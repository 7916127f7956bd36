#pragma once

#include "build/clsBuildContext.h"

#include <string>

/// Edits of plug-in INF files: each writes its log line before it changes anything and leaves the
/// rest of the INF as it was. Relative INF paths begin with "\" and start at the plug-in folder.
namespace vesk {

/// The section of an INF that PE Builder reads.
inline constexpr const char* kPluginSection = "PEBuilder";

/// The edits take an INF that cannot be read for an empty one: asks before them whether it can.
/// A missing one is fine. @throws Failure, also for UTF-16 text that the edits would damage
void RequireReadable(const std::string& inf);

/// Where the edits of an INF report to. One that cannot be read is reported here, once: then the
/// edits, which only log their lines, report nothing more.
/// @param attempt what is going to be done; its place is the INF
clsBuildContext EditingContext(const clsBuildContext& context, const Attempt& attempt);

/// Comments out the "[Append]" section's nu2menu entry: the menu is built by this program.
/// @throws Failure when the file cannot be written
void CommentOutAppendMenu(const clsBuildContext& context, const std::string& inf);

/// Name of the plug-in's own menu file; empty when its INF names none or cannot be read.
std::string GetAppendMenuFile(const std::string& inf);

/// Does nothing, on purpose: the place where a plug-in's own menu file would be taken over.
void OnPluginMenuFile(const std::string& path);

/// Puts the category prefix in front of the plug-in's name, unless categories are switched off.
void PrefixPluginName(const clsBuildContext& context, const std::string& inf,
                      const std::string& prefix);

/// Enables or disables a plug-in that declares its systems and service packs by whether the chosen
/// Windows source is among them. One that declares nothing is left as its author shipped it.
void SetPluginEnable(const clsBuildContext& context, const std::string& inf);

/// Writes the INF whose name is a category's heading. @throws Failure for a title over 50
/// characters
void CreateCategorySeparator(const clsBuildContext& context, const std::string& relativeInf,
                             const std::string& prefix, const std::string& title);

} // namespace vesk
