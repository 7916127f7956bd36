#include "ui/kit/clsPictureView.h"

#include "ui/kit/modContrast.h"
#include "ui/kit/modPicture.h"

#include <algorithm>

namespace vesk {

clsPictureView::Library::Library() {
    const Gdiplus::GdiplusStartupInput input;
    isReady_ = Gdiplus::GdiplusStartup(&token_, &input, nullptr) == Gdiplus::Ok;
}

clsPictureView::Library::~Library() {
    if (isReady_)
        Gdiplus::GdiplusShutdown(token_);
}

void clsPictureView::Load() {
    isLoaded_ = true;
    library_.emplace();
    const auto picture = PictureFromBytes(ResourceBytes("JPG", resourceId_));
    OLE_HANDLE handle = 0;
    if (!library_->IsReady() || !picture || FAILED(picture->get_Handle(&handle)))
        return;
    auto* const bitmap = reinterpret_cast<HBITMAP>(static_cast<ULONG_PTR>(handle));
    image_.emplace(bitmap, nullptr); // a copy: the picture goes
    if (image_->GetLastStatus() != Gdiplus::Ok)
        image_.reset();
}

clsPictureView::~clsPictureView() = default;

void clsPictureView::Paint(HDC target, const RECT& area) {
    if (!isLoaded_)
        Load();
    const auto width = static_cast<Gdiplus::REAL>(area.right - area.left);
    const auto height = static_cast<Gdiplus::REAL>(area.bottom - area.top);
    if (!image_ || width <= 0 || height <= 0)
        return;
    const auto whole = Gdiplus::SizeF(static_cast<Gdiplus::REAL>(image_->GetWidth()),
                                      static_cast<Gdiplus::REAL>(image_->GetHeight()));
    const Gdiplus::REAL step = whole.Width / width;
    const Gdiplus::REAL shown = std::min(whole.Height / step, height);
    const auto left = static_cast<Gdiplus::REAL>(area.left);
    const Gdiplus::REAL top = static_cast<Gdiplus::REAL>(area.bottom) - shown;
    Gdiplus::Graphics graphics(target);
    graphics.SetInterpolationMode(Gdiplus::InterpolationModeHighQualityBicubic);
    graphics.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHalf);
    Gdiplus::ImageAttributes edges; // mixed with their mirror image, not with nothing
    edges.SetWrapMode(Gdiplus::WrapModeTileFlipXY);
    if (shown < height)
        graphics.DrawImage(&*image_,
                           Gdiplus::RectF(left, top - (height - shown), width, height - shown + 1),
                           0, 0, whole.Width, 1, Gdiplus::UnitPixel, &edges);
    graphics.DrawImage(&*image_, Gdiplus::RectF(left, top, width, shown), 0,
                       whole.Height - step * shown, whole.Width, step * shown, Gdiplus::UnitPixel,
                       &edges);
}

void clsPictureView::PaintOnWhite(HDC target, const RECT& area) {
    if (IsDark(GetSysColor(COLOR_WINDOW)))
        FillRect(target, &area, GetSysColorBrush(COLOR_WINDOW));
    else
        Paint(target, area);
}

} // namespace vesk
