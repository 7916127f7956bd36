#include "ui/kit/modReadOnlyText.h"

namespace vesk {

std::optional<LRESULT> PlainTextAnswer(UINT message) {
    if (message != WM_GETDLGCODE)
        return std::nullopt;
    return DLGC_WANTARROWS;
}

void MakePlainText(clsSubclass& link, HWND textBox) {
    link.Attach(textBox, [](UINT message, WPARAM, LPARAM) { return PlainTextAnswer(message); });
}

} // namespace vesk
