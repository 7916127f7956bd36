#include "base/clsPatience.h"

#include <windows.h>

#include <algorithm>
#include <utility>

namespace vesk {

namespace {

/// What the system says where somebody has a file open: the first is also said of missing rights,
/// the last of a folder in which something removed is still open.
bool MayPass(DWORD error) {
    return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION ||
           error == ERROR_DIR_NOT_EMPTY;
}

} // namespace

clsPatience::clsPatience(std::function<std::uint32_t()> now,
                         std::function<void(std::uint32_t)> wait)
    : now_(std::move(now)), wait_(std::move(wait)), recoveredAt_(now_()) {}

clsPatience& clsPatience::OfProgram() {
    static clsPatience patience(GetTickCount, Sleep);
    return patience;
}

bool clsPatience::Try(const std::function<bool()>& call) {
    if (call())
        return true;
    if (!MayPass(GetLastError()))
        return false;
    Recover();
    for (std::uint32_t waited = kStep; waited <= kMostForOne && left_ >= kStep; waited += kStep) {
        left_ -= kStep;
        wait_(kStep);
        if (meanwhile_)
            meanwhile_();
        if (call()) {
            left_ = std::min(left_ + waited, kMostInVain); // it was not in vain
            return true;
        }
        if (!MayPass(GetLastError()))
            return false;
    }
    return false;
}

void clsPatience::Recover() {
    constexpr std::uint32_t kShare = 10;
    const std::uint32_t now = now_();
    const std::uint32_t recovered = (now - recoveredAt_) / kShare;
    recoveredAt_ = now;
    left_ += std::min(recovered, kMostInVain - left_);
}

clsPatience::Meanwhile::Meanwhile(clsPatience& patience, std::function<void()> meanwhile)
    : patience_(patience), before_(std::exchange(patience_.meanwhile_, std::move(meanwhile))) {}

clsPatience::Meanwhile::~Meanwhile() {
    patience_.meanwhile_.swap(before_);
}

bool TryPatiently(const std::function<bool()>& call) {
    return clsPatience::OfProgram().Try(call);
}

void AwaitRemoval(const std::wstring& path) {
    // Of what is only marked as removed the system does not even tell the attributes.
    TryPatiently([&] {
        return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES ||
               GetLastError() != ERROR_ACCESS_DENIED;
    });
}

bool CreatePatiently(const std::wstring& path, const std::function<bool()>& create) {
    if (create())
        return true;
    if (GetLastError() != ERROR_ACCESS_DENIED)
        return false;
    AwaitRemoval(path); // where rights are missing there is nothing to wait for
    return create();
}

} // namespace vesk
