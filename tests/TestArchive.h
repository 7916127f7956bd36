#pragma once

#include "archive/ZipBuilder.h"

#include <utility>

namespace vesk::test {

/// A ZIP archive with stored members. Names ending in "/" are folders.
class TestArchive {
public:
    explicit TestArchive(const std::vector<std::pair<std::string, std::string>>& members) {
        std::vector<TestMember> stored;
        for (const auto& [name, text] : members)
            stored.push_back(TestMember::Stored(name, text));
        bytes_ = MakeZip(stored);
    }

    [[nodiscard]] const std::string& Bytes() const { return bytes_; }

private:
    std::string bytes_;
};

} // namespace vesk::test
