#include "Input.h"
#include "archive/ArchiveContents.h"

/// A whole extraction without a disk: every member that is not refused is read.
void CheckInput(const std::string& text) {
    vesk::test::ReadZipTwice(text);
}
