#pragma once

#include "archive/ExtractionOutcome.h"

#include <functional>
#include <optional>
#include <string>

namespace vesk {

/// What the owner of an extraction may be asked. Left empty, the natural answer is taken: an
/// existing file stays, there is no password, nothing runs between members.
struct UnzipCallbacks {
    enum class Replace { No = 100, Yes = 102, Cancel = 104 };

    /// Asked about an existing file, only when extraction does not overwrite silently.
    std::function<Replace(const std::string& fileName)> replace;

    /// Asked for the password of the archive, up to three times while it is wrong; nothing means
    /// there is none, and no further member asks. @param wrongBefore not the first time
    std::function<std::optional<std::string>(bool wrongBefore)> password;

    /// Called after each member, and now and then within large ones, so that a window stays alive.
    /// @param fraction of the archive's bytes that is done, 0 to 1
    std::function<void(double fraction)> progress;
};

/// Texts for owners that ask with a window.
constexpr const char* kReplaceTitle = "VBUnZip32 - File Already Exists!";
constexpr const char* kPasswordTitle = "Please Enter The Password!";

/// The question whether an existing file is replaced, by its name.
std::string ReplaceQuestion(const std::string& fileName);

/// The option record of one run: the switches that change what is done. The others of the family
/// have one value ever (all members, stored folders kept, no conversions) and are simply how
/// extraction works.
struct DCL {
    bool PromptToOverwrite = false; ///< Ask `replace` about each existing file.
    bool noflag = true;             ///< Overwrite existing files; without both switches they stay.
    bool ntflag = false;            ///< Test the archive, write nothing.
    bool nvflag = false;            ///< List the archive, write nothing.
    std::string Zip;                ///< The archive's path.
    std::string ExtractDir;         ///< The target folder.
};

/// Extracts or lists one archive as the options say. What UnzipFile does, for other options.
ExtractionOutcome SingleEntryUnzip(const DCL& options, const UnzipCallbacks& callbacks);

/// Extracts every member of a ZIP archive below the target folder, with its stored folders, times
/// and attributes, over existing files and without a question. With an empty target folder the
/// archive is listed instead. What could not be extracted is in the result, and a line in
/// the message buffer; the rest is extracted. Members that are neither stored nor deflated are
/// refused by design, with the method's name as the reason. Throws nothing but what a callback
/// throws.
ExtractionOutcome UnzipFile(const std::string& zipPath, const std::string& targetFolder,
                            const UnzipCallbacks& callbacks = {});

/// Does all that UnzipFile does except the writing: members are unpacked and their CRCs compared,
/// a piece at a time. It does not know what is in a target folder.
ExtractionOutcome TestZip(const std::string& zipPath, const UnzipCallbacks& callbacks = {});

/// What the last run had to say: a line for each member refused or failed, the listing, and a
/// summary at the end. Lines end in CR LF.
const std::string& UnzipMessages();

} // namespace vesk
