#include "archive/modZipTexts.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

namespace vesk {

namespace {

constexpr int kNameWidth = 40;

} // namespace

void ZipTotals::Add(const ZipMember& member) {
    packedSize += member.packedSize;
    size += member.size;
    ++members;
}

int ZipTotals::CompressFactor() const {
    if (size <= packedSize)
        return 0;
    return static_cast<int>(100.0 * static_cast<double>(size - packedSize) /
                            static_cast<double>(size));
}

std::string PrintableName(std::string_view name) {
    std::string printable(name);
    std::ranges::replace_if(
        printable, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
    return printable;
}

std::string ListingHeading() {
    std::array<char, 128> line{};
    std::snprintf(line.data(), line.size(), "%-*s %12s  %-10s  %s\r\n", kNameWidth,
                  "Filename:", "Size", "Date", "Time");
    return line.data();
}

std::string ListingLine(const ZipMember& member, std::string_view name) {
    // The columns behind the name are of bounded width; a name may be as long as it likes.
    std::string text = PrintableName(name);
    if (text.size() < kNameWidth)
        text.resize(kNameWidth, ' ');
    const unsigned date = member.dosDate;
    const unsigned time = member.dosTime;
    std::array<char, 64> columns{};
    std::snprintf(columns.data(), columns.size(), " %12s  %04u-%02u-%02u  %02u:%02u\r\n",
                  std::to_string(member.size).c_str(), 1980 + (date >> 9), date >> 5 & 15,
                  date & 31, time >> 11, time >> 5 & 63);
    return text + columns.data();
}

std::string Summary(const ZipVersion& version, const ZipTotals& totals) {
    const auto line = [](std::string_view label, const std::string& value) {
        return std::string(label) + value + "\r\n";
    };
    return line("Zip Info: ", version.zipInfo) + line("DLL Version: ", version.version) +
           line("DLL Date: ", version.date) + line("--------------", "") +
           line("Only Shows If uExtractList = 1 List Contents", "") +
           line("Comment         : ", std::to_string(totals.commentLength)) +
           line("Total Size Comp : ", std::to_string(totals.packedSize)) +
           line("Total Size      : ", std::to_string(totals.size)) +
           line("Compress Factor : %", std::to_string(totals.CompressFactor())) +
           line("Num Of Members  : ", std::to_string(totals.members));
}

} // namespace vesk
