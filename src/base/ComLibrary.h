#pragma once

#include <windows.h>

#include <objbase.h>

namespace vesk {

/// The COM library on the current thread for as long as this lives. A thread that uses it in
/// another way already keeps its own.
class ComLibrary {
public:
    /// Where COM cannot be used here, what asks it for an object gets the error.
    ComLibrary() : ready_(SUCCEEDED(CoInitialize(nullptr))) {}
    ComLibrary(const ComLibrary&) = delete;
    ComLibrary& operator=(const ComLibrary&) = delete;
    ~ComLibrary() {
        if (ready_)
            CoUninitialize();
    }

private:
    bool ready_;
};

} // namespace vesk
