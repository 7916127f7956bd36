#pragma once

#include "base/ComPointer.h"

#include <windows.h>

#include <ocidl.h>

#include <cstddef>
#include <span>

namespace vesk {

/// Bytes of a resource of the program; empty when it has no such resource.
std::span<const std::byte> ResourceBytes(const char* type, int id);

/// A picture from the bytes of an image file (JPEG, BMP, ...); null when they are not a picture.
ComPointer<IPicture> PictureFromBytes(std::span<const std::byte> bytes);

} // namespace vesk
