#include "Input.h"
#include "archive/ArchiveContents.h"

/// A whole extraction without a disk; what the system's library would be given is judged again.
void CheckInput(const std::string& text) {
    vesk::test::ReadCab(text);
}
