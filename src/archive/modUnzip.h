#pragma once

#include <functional>
#include <optional>
#include <string>

namespace vesk {

/// What the owner of an extraction may be asked. Left empty, the natural answer is taken.
struct UnzipCallbacks {
    enum class Replace { No = 100, Yes = 102, Cancel = 104 };

    /// Asked about an existing file, only when extraction does not overwrite silently.
    std::function<Replace(const std::string& fileName)> replace;

    /// Asked for the password of an encrypted member; nothing means there is none to be had.
    std::function<std::optional<std::string>(const std::string& memberName)> password;

    /// Called between members, so that a window stays alive.
    std::function<void()> letEventsRun;
};

/// Extracts every member of a ZIP archive below the target folder, with its stored folders, times
/// and attributes, over existing files and without a question. With an empty target folder the
/// archive is listed instead. No failure is reported: what went wrong stands in the message buffer,
/// the rest is extracted.
void UnzipFile(const std::string& zipPath, const std::string& targetFolder,
               const UnzipCallbacks& callbacks = {});

/// What the last UnzipFile had to say: a line for each member refused or failed, the listing, and a
/// summary at the end.
const std::string& UnzipMessages();

} // namespace vesk
