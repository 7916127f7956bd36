#include "ui/kit/clsDialogTemplate.h"

#include "base/modSystemError.h"
#include "ui/kit/clsDialogScale.h"
#include "ui/kit/modResolution.h"
#include "ui/kit/modWindow.h"

#include <cstddef>
#include <cstring>
#include <string>

namespace vesk {

namespace {

constexpr int kSmallestFont = 7; // points: a smaller one cannot be read
constexpr int kLargestFont = 72;

struct DialogFont {
    WORD points = 8;
    WORD weight = FW_NORMAL;
    BYTE italic = 0;
    BYTE charset = DEFAULT_CHARSET;
    std::wstring face = L"MS Shell Dlg 2";
};

DialogFont SystemMessageFont() {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    DialogFont font;
    if (!SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0))
        return font;
    const LOGFONTW& found = metrics.lfMessageFont;
    const int points =
        MulDiv(found.lfHeight < 0 ? -found.lfHeight : found.lfHeight, 72, SystemDpi());
    if (points < kSmallestFont || points > kLargestFont || found.lfFaceName[0] == L'\0')
        return font;
    font.points = static_cast<WORD>(points);
    font.charset = found.lfCharSet;
    font.face = found.lfFaceName;
    return font;
}

/// Appends the parts of a template; its own alignment rules are those of the resource format.
class TemplateWriter {
public:
    void Bytes(const std::uint8_t* from, const std::uint8_t* to) {
        bytes_.insert(bytes_.end(), from, to);
    }
    void Font(const DialogFont& font) {
        Word(font.points);
        Word(font.weight);
        bytes_.push_back(font.italic);
        bytes_.push_back(font.charset);
        for (const wchar_t c : font.face)
            Word(static_cast<WORD>(c));
        Word(0);
    }
    void AlignToFour() { bytes_.resize((bytes_.size() + 3) & ~std::size_t{3}); }

    [[nodiscard]] std::vector<std::uint32_t> Words() {
        AlignToFour();
        std::vector<std::uint32_t> words(bytes_.size() / sizeof(std::uint32_t));
        std::memcpy(words.data(), bytes_.data(), bytes_.size());
        return words;
    }

private:
    void Word(WORD value) {
        bytes_.push_back(static_cast<std::uint8_t>(value));
        bytes_.push_back(static_cast<std::uint8_t>(value >> 8));
    }

    std::vector<std::uint8_t> bytes_;
};

WORD WordAt(const std::uint8_t* at) {
    WORD word = 0;
    std::memcpy(&word, at, sizeof word);
    return word;
}

DWORD DoubleWordAt(const std::uint8_t* at) {
    DWORD word = 0;
    std::memcpy(&word, at, sizeof word);
    return word;
}

/// What the fixed part of an extended template says.
struct Header {
    DWORD extendedStyle;
    DWORD style;
    int width, height; ///< In dialog units.

    explicit Header(const std::uint8_t* start)
        : extendedStyle(DoubleWordAt(start + 8)),
          style(DoubleWordAt(start + 12)),
          width(WordAt(start + 22)),
          height(WordAt(start + 24)) {}
};

/// Pixels that a dialog takes with its frame, in a font.
SIZE SizeInFont(const Header& dialog, const DialogFont& font, int dpi) {
    constexpr const char* kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    LOGFONTW description{};
    description.lfHeight = -MulDiv(font.points, dpi, 72);
    description.lfWeight = font.weight;
    description.lfCharSet = font.charset;
    lstrcpynW(description.lfFaceName, font.face.c_str(), LF_FACESIZE);
    const GdiHandle measured(CreateFontIndirectW(&description));
    const DeviceContext screen(CreateCompatibleDC(nullptr));
    const HGDIOBJ before = SelectObject(screen.Get(), measured.Get());
    SIZE letters{};
    TEXTMETRICA metrics{};
    GetTextExtentPoint32A(screen.Get(), kLetters, 52, &letters);
    GetTextMetricsA(screen.Get(), &metrics);
    SelectObject(screen.Get(), before);
    const int unitX = (letters.cx / 26 + 1) / 2; // the system's own rule for dialog units
    RECT area{0, 0, MulDiv(dialog.width, unitX, 4), MulDiv(dialog.height, metrics.tmHeight, 8)};
    AdjustWindowRectEx(&area, dialog.style, FALSE, dialog.extendedStyle);
    return {area.right - area.left, area.bottom - area.top};
}

void MakeFit(const Header& dialog, HWND owner, DialogFont& font) {
    const RECT work = WorkAreaOf(owner);
    const auto fits = [&] {
        const SIZE size = SizeInFont(dialog, font, DpiOf(owner));
        return size.cx <= work.right - work.left && size.cy <= work.bottom - work.top;
    };
    while (font.points > kSmallestFont && !fits())
        --font.points;
}

/// The size of a dialog's font, as its template gave it.
WORD PointsOf(HWND dialog) {
    LOGFONTA description{};
    GetObjectA(FontOf(dialog), sizeof description, &description);
    return static_cast<WORD>(MulDiv(-description.lfHeight, 72, DpiOf(dialog)));
}

constexpr std::size_t kFixedPart = 26; // of an extended template: up to its menu

/// Skips a menu, class or title: nothing, a number or a text.
const std::uint8_t* SkipNameOrNumber(const std::uint8_t* at) {
    if (WordAt(at) == 0xFFFF)
        return at + 4;
    while (WordAt(at) != 0)
        at += 2;
    return at + 2;
}

/// Skips point size, weight, italic, character set and face.
const std::uint8_t* SkipFont(const std::uint8_t* at) {
    return SkipNameOrNumber(at + 6);
}

} // namespace

clsDialogTemplate::clsDialogTemplate(int resourceId, HWND owner) {
    const HRSRC found = FindResourceA(ProgramInstance(), MAKEINTRESOURCEA(resourceId), RT_DIALOG);
    if (!found)
        ThrowLastError("cannot find dialog", std::to_string(resourceId));
    const auto* start =
        static_cast<const std::uint8_t*>(LockResource(LoadResource(ProgramInstance(), found)));
    const std::uint8_t* end = start + SizeofResource(ProgramInstance(), found);

    // The resource compiler writes every dialog of this program in the extended form with a font.
    const std::uint8_t* font =
        SkipNameOrNumber(SkipNameOrNumber(SkipNameOrNumber(start + kFixedPart)));
    const auto itemsOffset =
        (static_cast<std::size_t>(SkipFont(font) - start) + 3) & ~std::size_t{3};

    const Header header(start);
    DialogFont chosen = SystemMessageFont();
    if ((header.style & WS_CHILD) != 0)
        chosen.points = PointsOf(owner);
    else
        MakeFit(header, owner, chosen);

    points_ = chosen.points;
    TemplateWriter writer;
    writer.Bytes(start, font);
    writer.Font(chosen);
    writer.AlignToFour();
    writer.Bytes(start + itemsOffset, end);
    words_ = writer.Words();
}

} // namespace vesk
