#include "net/clsByteQueue.h"

#include <algorithm>

namespace vesk {

std::span<char> clsByteQueue::Room(std::size_t size) {
    if (storage_.size() - end_ < size && begin_ > 0) {
        std::copy(storage_.begin() + static_cast<std::ptrdiff_t>(begin_),
                  storage_.begin() + static_cast<std::ptrdiff_t>(end_), storage_.begin());
        end_ -= begin_;
        begin_ = 0;
    }
    if (storage_.size() - end_ < size)
        storage_.resize(std::max(end_ + size, storage_.size() * 2));
    return std::span(storage_).subspan(end_);
}

void clsByteQueue::Append(std::string_view bytes) {
    std::ranges::copy(bytes, Room(bytes.size()).begin());
    Commit(bytes.size());
}

void clsByteQueue::Drop(std::size_t size) {
    begin_ += std::min(size, Size());
    if (Empty())
        begin_ = end_ = 0;
}

void clsByteQueue::Clear() {
    storage_ = {};
    begin_ = end_ = 0;
}

} // namespace vesk
