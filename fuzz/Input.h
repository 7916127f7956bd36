#pragma once

#include "Require.h"

#include <cstddef>
#include <cstdint>
#include <string>

/// What a program of this folder does with an input. What it throws ends the program.
void CheckInput(const std::string& text);

/// libFuzzer's way in.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CheckInput({reinterpret_cast<const char*>(data), size});
    return 0;
}
