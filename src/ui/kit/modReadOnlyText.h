#pragma once

#include "ui/kit/clsSubclass.h"

#include <windows.h>

#include <optional>

/// Texts of several lines that are read, and not written.
namespace vesk {

/// Leaves Tab, Enter and Escape to the dialog: a text box of several lines takes them for itself,
/// and in a page within a dialog the keyboard would never get out of it again.
/// @return the answer to WM_GETDLGCODE, nothing for other messages
std::optional<LRESULT> PlainTextAnswer(UINT message);

/// Gives a text box that behaviour. @param link lives as long as it is wanted
void MakePlainText(clsSubclass& link, HWND textBox);

} // namespace vesk
