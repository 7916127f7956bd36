#pragma once

#include <utility>

namespace vesk {

/// Holds a flag up for the length of a scope.
class ScopeFlag {
public:
    /// @param flag outlives this object; the end of the scope gives it its value of before
    explicit ScopeFlag(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
    ScopeFlag(const ScopeFlag&) = delete;
    ScopeFlag& operator=(const ScopeFlag&) = delete;
    ~ScopeFlag() { flag_ = before_; }

private:
    bool& flag_;
    bool before_;
};

} // namespace vesk
