#pragma once

#include <windows.h>

#include <objbase.h>

#include <memory>

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

/// Gives a reference back; what ComPointer deletes with.
struct ComRelease {
    template <class Interface>
    void operator()(Interface* object) const {
        object->Release();
    }
};

/// Owns one reference to a COM object.
template <class Interface>
using ComPointer = std::unique_ptr<Interface, ComRelease>;

} // namespace vesk
