#include "ui/modDialogTemplate.h"

#include "base/modSystemError.h"
#include "ui/modWindow.h"

#include <cstring>
#include <string>

namespace vesk {

namespace {

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
        MulDiv(found.lfHeight < 0 ? -found.lfHeight : found.lfHeight, 72, ScalePixels(96));
    // A dialog in a tiny font cannot be read; one in a huge font does not fit on any screen.
    if (points < 7 || points > 20 || found.lfFaceName[0] == L'\0')
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

constexpr std::size_t kFixedPart = 26; // of an extended template: up to its menu

WORD WordAt(const std::uint8_t* at) {
    WORD word = 0;
    std::memcpy(&word, at, sizeof word);
    return word;
}

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

DialogTemplate::DialogTemplate(int resourceId) {
    const HRSRC found = FindResourceA(ProgramInstance(), MAKEINTRESOURCEA(resourceId), RT_DIALOG);
    if (!found)
        ThrowLastError("find dialog", std::to_string(resourceId));
    const auto* start =
        static_cast<const std::uint8_t*>(LockResource(LoadResource(ProgramInstance(), found)));
    const std::uint8_t* end = start + SizeofResource(ProgramInstance(), found);

    // The resource compiler writes every dialog of this program in the extended form with a font.
    const std::uint8_t* font =
        SkipNameOrNumber(SkipNameOrNumber(SkipNameOrNumber(start + kFixedPart)));
    const auto itemsOffset =
        (static_cast<std::size_t>(SkipFont(font) - start) + 3) & ~std::size_t{3};

    TemplateWriter writer;
    writer.Bytes(start, font);
    writer.Font(SystemMessageFont());
    writer.AlignToFour();
    writer.Bytes(start + itemsOffset, end);
    words_ = writer.Words();
}

} // namespace vesk
