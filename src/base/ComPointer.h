#pragma once

#include <memory>

namespace vesk {

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
