#include "Input.h"
#include "archive/ArchiveContents.h"

/// The input as an archive or a member's name, without a disk. READS is the function that looks at
/// it: at every member that is not refused, what the system's library would be given, both forms of
/// a name.
void CheckInput(const std::string& text) {
    vesk::test::READS(text);
}
