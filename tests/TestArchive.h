#pragma once

#include "archive/clsCRC.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vesk::test {

/// A ZIP archive with stored members, composed in memory. Names ending in "/" are folders.
class TestArchive {
public:
    explicit TestArchive(const std::vector<std::pair<std::string, std::string>>& members) {
        for (const auto& [name, text] : members)
            Add(name, text);
        const std::size_t directoryStart = bytes_.size();
        bytes_ += directory_;
        Put32(bytes_, 0x06054B50); // end of central directory
        Put32(bytes_, 0);          // disk numbers
        Put16(bytes_, count_);
        Put16(bytes_, count_);
        Put32(bytes_, directory_.size());
        Put32(bytes_, directoryStart);
        Put16(bytes_, 0); // comment length
    }

    [[nodiscard]] const std::string& Bytes() const { return bytes_; }

private:
    void Add(const std::string& name, const std::string& text) {
        std::string header;        // the fields that local header and directory entry share
        Put16(header, 20);         // version needed
        Put16(header, 0);          // flags
        Put16(header, 0);          // method: stored
        Put32(header, 0x34A41867); // 2006-05-04 03:03:14
        Put32(header, static_cast<std::uint32_t>(clsCRC().CalculateString(text)));
        Put32(header, text.size());
        Put32(header, text.size());
        Put16(header, name.size());
        Put16(header, 0); // extra field length

        Put32(directory_, 0x02014B50);
        Put16(directory_, 20); // made by: MS-DOS
        directory_ += header;
        Put16(directory_, 0);                                   // comment length
        Put16(directory_, 0);                                   // disk
        Put16(directory_, 0);                                   // internal attributes
        Put32(directory_, name.ends_with('/') ? 0x10U : 0x20U); // DOS attributes
        Put32(directory_, bytes_.size());
        directory_ += name;

        Put32(bytes_, 0x04034B50);
        bytes_ += header + name + text;
        ++count_;
    }

    static void Put16(std::string& to, std::size_t value) {
        to += static_cast<char>(value & 0xFF);
        to += static_cast<char>(value >> 8 & 0xFF);
    }
    static void Put32(std::string& to, std::size_t value) {
        Put16(to, value & 0xFFFF);
        Put16(to, value >> 16);
    }

    std::string bytes_;
    std::string directory_;
    std::size_t count_ = 0;
};

} // namespace vesk::test
