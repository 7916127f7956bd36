#include "Input.h"
#include "archive/ArchiveContents.h"

/// Both forms of the gate.
void CheckInput(const std::string& text) {
    vesk::test::CheckName(text);
}
