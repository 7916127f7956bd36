#pragma once

#include "archive/modCabXml.h"

#include <cstdint>
#include <memory>
#include <string>

namespace vesk {

/// What a cabinet tells its owner while it is read. An event may destroy the cabinet object: no
/// further event follows, and the running method returns after the member at hand. What an event
/// throws ends the iteration and reaches the method's caller.
class CabEvents {
public:
    virtual ~CabEvents() = default;

    /// A member that matches, from GetInfo.
    virtual void OnFileFound(const CabMember& /*member*/) {}

    /// A member is about to be written; setting `cancel` keeps it from that.
    virtual void OnBeforeExtract(bool& /*cancel*/, const std::string& /*name*/) {}

    /// A member stands complete at its target path.
    virtual void OnAfterExtract(const std::string& /*targetPath*/) {}
};

/// One cabinet archive, read through the system's setup library. Each method is one iteration over
/// the members, and only one iteration may run in the program at a time: a method called from an
/// event fails with ERROR_BUSY.
///
/// All methods throw a Failure with the source "CabFile": 0x800407A4 when CabName is empty,
/// otherwise the system's error code. A cabinet that continues in another one ends where it ends.
class clsCab {
public:
    /// @param owner told of the members; may be null, must outlive this object
    explicit clsCab(CabEvents* owner = nullptr);

    std::string CabName;           ///< Full path of the cabinet.
    std::string FileToExtract;     ///< One member's name in any letter case; empty for all.
    std::string DestinationFolder; ///< Empty for the cabinet's own folder.

    /// Number of members.
    std::int32_t FileCount();

    /// Writes the member FileToExtract, or every member, below the destination folder, over
    /// existing files, and creates the folders it needs. A member whose name leads elsewhere, or
    /// through a link that is there already, is left out. A member that turns out damaged or cut
    /// short is removed again, and the method then throws; complete members stay.
    void Extract();

    /// Raises OnFileFound for every member, or for FileToExtract only, and stops there.
    void GetInfo();

    /// The member list as an XML document.
    std::string GetXML();

private:
    std::shared_ptr<CabEvents*> owner_; ///< Its end tells a running iteration that this is gone.
};

} // namespace vesk
