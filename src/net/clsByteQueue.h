#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace vesk {

/// Bytes that go in at one end and out at the other, in one piece of memory: a reader sees all that
/// waits without a copy, a writer fills free room in place. Memory once taken is kept for reuse, so
/// a queue that is emptied as fast as it is filled stays as large as one filling.
class clsByteQueue {
public:
    /// How many bytes wait, and whether none does.
    [[nodiscard]] std::size_t Size() const { return end_ - begin_; }
    [[nodiscard]] bool Empty() const { return begin_ == end_; }

    /// All bytes that wait. Valid until the next change.
    [[nodiscard]] std::string_view Bytes() const { return {storage_.data() + begin_, Size()}; }

    /// Free room for at least `size` bytes behind the last one; Commit takes over what was filled.
    /// @throws std::bad_alloc
    std::span<char> Room(std::size_t size);
    void Commit(std::size_t size) { end_ += size; }

    /// @throws std::bad_alloc
    void Append(std::string_view bytes);

    /// Removes bytes at the front, at most all.
    void Drop(std::size_t size);

    /// Removes all bytes and gives the memory back.
    void Clear();

private:
    std::vector<char> storage_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
};

} // namespace vesk
