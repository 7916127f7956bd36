#pragma once

#include "base/Com.h"
#include "ui/kit/modImageScale.h"
#include "ui/kit/modWindow.h"

#include <windows.h>

#include <ocidl.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vesk {

/// Bytes of a resource of the program; empty when it has no such resource.
std::span<const std::byte> ResourceBytes(const char* type, int id);

/// A picture from the bytes of an image file (JPEG, BMP, ...); null when they are none.
ComPointer<IPicture> PictureFromBytes(std::span<const std::byte> bytes);

/// A picture of the program's resources that covers the control it is painted on.
class clsPictureView {
public:
    /// @param resourceId number of a "JPG" resource; without a picture nothing is painted
    explicit clsPictureView(int resourceId);

    /// Paints the picture over the rectangle.
    void Paint(HDC target, const RECT& area);

private:
    std::vector<std::uint32_t> pixels_;
    ImageSize size_;
    GdiHandle scaled_;
    ImageSize scaledSize_;
};

} // namespace vesk
