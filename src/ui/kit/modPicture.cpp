#include "ui/kit/modPicture.h"

#include <olectl.h>

#include <cstring>

namespace vesk {

namespace {

using GlobalMemory = UniqueHandle<::GlobalFree, HGLOBAL>;

BITMAPINFO DescribePixels(ImageSize size) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = static_cast<LONG>(size.width);
    info.bmiHeader.biHeight = -static_cast<LONG>(size.height); // rows from top to bottom
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

} // namespace

std::span<const std::byte> ResourceBytes(const char* type, int id) {
    const HRSRC found = FindResourceA(ProgramInstance(), MAKEINTRESOURCEA(id), type);
    if (!found)
        return {};
    const HGLOBAL loaded = LoadResource(ProgramInstance(), found);
    return {static_cast<const std::byte*>(LockResource(loaded)),
            SizeofResource(ProgramInstance(), found)};
}

ComPointer<IPicture> PictureFromBytes(std::span<const std::byte> bytes) {
    GlobalMemory memory(GlobalAlloc(GMEM_MOVEABLE, bytes.size()));
    if (!memory || bytes.empty())
        return {};
    std::memcpy(GlobalLock(memory.Get()), bytes.data(), bytes.size());
    GlobalUnlock(memory.Get());

    IStream* rawStream = nullptr;
    if (FAILED(CreateStreamOnHGlobal(memory.Get(), TRUE, &rawStream)))
        return {};
    (void)memory.Release(); // the stream frees it
    const ComPointer<IStream> stream(rawStream);

    IID iid{};
    wchar_t pictureInterface[] = L"{7BF80980-BF32-101A-8BBB-00AA00300CAB}";
    void* picture = nullptr;
    if (FAILED(CLSIDFromString(pictureInterface, &iid)) ||
        FAILED(OleLoadPicture(stream.get(), static_cast<LONG>(bytes.size()), FALSE, iid, &picture)))
        return {};
    return ComPointer<IPicture>(static_cast<IPicture*>(picture));
}

clsPictureView::clsPictureView(int resourceId) {
    const auto picture = PictureFromBytes(ResourceBytes("JPG", resourceId));
    OLE_HANDLE handle = 0;
    if (!picture || FAILED(picture->get_Handle(&handle)))
        return;
    auto* const bitmap = reinterpret_cast<HBITMAP>(static_cast<ULONG_PTR>(handle));
    BITMAP shape{};
    if (GetObjectA(bitmap, sizeof shape, &shape) == 0)
        return;
    size_ = {static_cast<std::size_t>(shape.bmWidth), static_cast<std::size_t>(shape.bmHeight)};
    pixels_.resize(size_.width * size_.height);
    BITMAPINFO info = DescribePixels(size_);
    const DeviceContext memory(CreateCompatibleDC(nullptr));
    if (GetDIBits(memory.Get(), bitmap, 0, static_cast<UINT>(size_.height), pixels_.data(), &info,
                  DIB_RGB_COLORS) == 0)
        pixels_.clear();
}

void clsPictureView::Paint(HDC target, const RECT& area) {
    if (pixels_.empty() || area.right <= area.left || area.bottom <= area.top)
        return;
    const ImageSize wanted{static_cast<std::size_t>(area.right - area.left),
                           static_cast<std::size_t>(area.bottom - area.top)};
    if (!scaled_ || scaledSize_ != wanted) {
        const auto scaled = ScaleToCover(pixels_, size_, wanted);
        const BITMAPINFO info = DescribePixels(wanted);
        void* bits = nullptr;
        scaled_.Reset(CreateDIBSection(target, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        if (!scaled_)
            return;
        std::memcpy(bits, scaled.data(), scaled.size() * sizeof scaled.front());
        scaledSize_ = wanted;
    }
    const DeviceContext memory(CreateCompatibleDC(target));
    const HGDIOBJ before = SelectObject(memory.Get(), scaled_.Get());
    BitBlt(target, area.left, area.top, area.right - area.left, area.bottom - area.top,
           memory.Get(), 0, 0, SRCCOPY);
    SelectObject(memory.Get(), before);
}

} // namespace vesk
