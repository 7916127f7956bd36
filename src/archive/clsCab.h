#pragma once

#include "archive/ExtractionOutcome.h"
#include "archive/modCabXml.h"

#include <cstdint>
#include <memory>
#include <string>

namespace vesk {

/// What a cabinet reports to its owner while it is read. An event may destroy the cabinet object:
/// no further event follows, and the running method returns after the member at hand. What an event
/// throws ends the iteration and reaches the method's caller.
class CabEvents {
public:
    virtual ~CabEvents() = default;

    /// A member that matches, from GetInfo.
    virtual void OnFileFound(const CabMember& /*member*/) {}

    /// A member is about to be written; setting `cancel` keeps it from that.
    virtual void OnBeforeExtract(bool& /*cancel*/, const std::string& /*name*/) {}

    /// A member is complete at its target path.
    virtual void OnAfterExtract(const std::string& /*targetPath*/) {}

    /// What of a member was not done, and why: it is not at its target path, or, after
    /// OnAfterExtract, not all of it was kept. One of this and OnAfterExtract follows each
    /// OnBeforeExtract that is not answered with `cancel`.
    virtual void OnNotExtracted(const MemberFailure& /*failure*/) {}

    /// Now and then while extracting, also within a large member.
    /// @param fraction of the bytes wanted that is done, 0 to 1
    virtual void OnProgress(double /*fraction*/) {}
};

/// One cabinet archive. Its headers are judged and stored or MSZIP data unpacked here; only data in
/// LZX or Quantum is unpacked by the system's cabinet library. Each method is one iteration over
/// the members, and only one iteration may run in the program at a time: a method called from an
/// event fails with ERROR_BUSY.
///
/// All methods throw a Failure with the source "CabFile": 0x800407A4 when CabName is empty,
/// otherwise the system's error code. A cabinet that continues in another one ends where it ends.
class clsCab {
public:
    /// @param owner receives the events; may be null, must outlive this object
    explicit clsCab(CabEvents* owner = nullptr);

    std::string CabName;           ///< Full path of the cabinet.
    std::string FileToExtract;     ///< One member's name in any letter case; empty for all.
    std::string DestinationFolder; ///< Empty for the cabinet's own folder.

    /// Number of members.
    std::int32_t FileCount();

    /// Writes the member FileToExtract, or every member, below the destination folder, over
    /// existing files (read-only ones, too), and creates the folders it needs, but none
    /// when no member is wanted. Members get their stored names, times and attributes; of two with
    /// one name the later one stays. A member whose name leads elsewhere is left out. One that is
    /// damaged or cannot be written ends nothing but itself; when it is through, the method throws
    /// the failure of the first of those.
    void Extract();

    /// Does and reports all that Extract does except the writing, with the names for target paths.
    /// Members in LZX and Quantum are not unpacked: of them the data's checksums are compared.
    void Test();

    /// Raises OnFileFound for every member, or for FileToExtract only, and stops there.
    void GetInfo();

    /// The member list as an XML document.
    std::string GetXML();

private:
    std::shared_ptr<CabEvents*> owner_; ///< Its end shows a running iteration that this is gone.
};

} // namespace vesk
