#pragma once

#include <windows.h>

#include <cstdint>
#include <utility>

namespace vesk {

/// Owns one handle of the Windows API. The kind of handle fixes how it is closed and which value
/// means "none", so nobody closes one by hand. Closing leaves the last error as it was: a failure
/// can still be asked for after the handles of the failed call are gone.
template <auto CloseFunction, class Handle, std::intptr_t Invalid = 0>
class UniqueHandle {
public:
    UniqueHandle() = default;
    /// Takes a handle over; one that means "none", too.
    explicit UniqueHandle(Handle handle) : handle_(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.Release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        Reset(other.Release());
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;
    ~UniqueHandle() { Reset(); }

    /// Whether there is a handle.
    explicit operator bool() const { return handle_ != None(); }

    /// The handle, which stays owned.
    [[nodiscard]] Handle Get() const { return handle_; }

    /// The handle, which is the caller's from now on.
    [[nodiscard]] Handle Release() { return std::exchange(handle_, None()); }

    /// Where an API function is to store a handle; what was owned before is closed.
    [[nodiscard]] Handle* Out() {
        Reset();
        return &handle_;
    }

    /// Closes what is owned and takes over another handle, or none.
    void Reset(Handle handle = None()) {
        const Handle old = std::exchange(handle_, handle);
        if (old == None() || old == handle)
            return;
        const DWORD error = ::GetLastError();
        CloseFunction(old);
        ::SetLastError(error);
    }

private:
    static Handle None() { return (Handle)Invalid; } // pointer or integer: only this cast does both

    Handle handle_ = None();
};

using FileHandle = UniqueHandle<::CloseHandle, HANDLE, -1>;
using MappingHandle = UniqueHandle<::CloseHandle, HANDLE>;
using MappedView = UniqueHandle<::UnmapViewOfFile, LPCVOID>;
using FindHandle = UniqueHandle<::FindClose, HANDLE, -1>;
using GlobalMemory = UniqueHandle<::GlobalFree, HGLOBAL>;

} // namespace vesk
