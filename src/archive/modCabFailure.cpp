#include "archive/modCabFailure.h"

#include "archive/ArchiveProblem.h"
#include "base/Failure.h"

#include <algorithm>
#include <array>

namespace vesk {

void ThrowCabFailure(std::uint32_t number, const std::string& reason) {
    struct Row {
        std::uint32_t code;
        const char* text;
    };
    static constexpr std::array kTexts = {
        Row{2, "The system cannot find the file specified."},
        Row{3, "The system cannot find the path specified."},
        Row{4, "The system cannot open the file."},
        Row{5, "Access is denied."},
        Row{8, "Not enough storage is available to process this command."},
        Row{13, "Invalid data."},
        Row{14, "Not enough storage is available to complete this operation."},
        Row{15, "The system cannot find the drive specified."},
        Row{19, "The media is write protected."},
        Row{20, "The system cannot find the device specified."},
        Row{21, "The device is not ready."},
        Row{23, "Data error (cyclic redundancy check)."},
        Row{25, "The drive cannot locate a specific area or track on the disk."},
        Row{26, "The specified disk or diskette cannot be accessed."},
        Row{27, "The drive cannot find the sector requested."},
        Row{29, "The system cannot write to the specified device."},
        Row{30, "The system cannot read from the specified device."},
        Row{31, "A device attached to the system is not functioning."},
        Row{32, "The process cannot access the file because it is being used by another process."},
        Row{33, "The process cannot access the file because another process has locked a portion "
                "of the file."},
        Row{39, "The disk is full."},
        Row{82, "The directory or file cannot be created."},
        Row{111, "The file name is too long."},
        Row{112, "There is not enough space on the disk."},
        Row{123, "The filename, directory name, or volume label syntax is incorrect."},
    };
    const auto* const row = std::ranges::find(kTexts, number, &Row::code);
    const std::string text = row == kTexts.end() ? "Unknown error." : row->text;
    throw Failure(number, "CabFile", text, reason.empty() ? text : reason);
}

std::uint32_t CabNumberOf(const std::exception& failure) {
    constexpr std::uint32_t kNotEnoughMemory = 8;
    constexpr std::uint32_t kCannotMake = 82;
    if (dynamic_cast<const ArchiveProblem*>(&failure) != nullptr)
        return kCannotMake;
    const auto* known = dynamic_cast<const Failure*>(&failure);
    return known != nullptr ? known->number : kNotEnoughMemory;
}

} // namespace vesk
