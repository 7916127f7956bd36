#pragma once

#include <windows.h>

#include <objidl.h>

#include <gdiplus.h>

#include <optional>

namespace vesk {

/// A picture of the program's resources that covers the control it is painted on.
class clsPictureView {
public:
    /// The picture is read when it is painted first. @param resourceId number of a "JPG" resource;
    /// without a picture nothing is painted
    explicit clsPictureView(int resourceId) : resourceId_(resourceId) {}
    clsPictureView(const clsPictureView&) = delete;
    clsPictureView& operator=(const clsPictureView&) = delete;
    ~clsPictureView();

    /// Paints the picture over the width of the rectangle, smoothly scaled, from its bottom up. In
    /// a taller one the picture's top line goes on to the top; in a flatter one the top is left
    /// out.
    void Paint(HDC target, const RECT& area);

    /// The same for a picture that is drawn on white: where windows are dark it would be a white
    /// square, and nothing but the window's colour is painted.
    void PaintOnWhite(HDC target, const RECT& area);

private:
    /// The system's library of pictures, for as long as one is in use.
    class Library {
    public:
        Library();
        Library(const Library&) = delete;
        Library& operator=(const Library&) = delete;
        ~Library();

        [[nodiscard]] bool IsReady() const { return isReady_; }

    private:
        ULONG_PTR token_ = 0;
        bool isReady_ = false;
    };

    void Load();

    int resourceId_;
    bool isLoaded_ = false;          ///< Or cannot be.
    std::optional<Library> library_; // before the image, which must go first
    std::optional<Gdiplus::Bitmap> image_;
};

} // namespace vesk
