#pragma once

namespace vesk {

/// Hands what was written of a file to the disk. That a file system cannot do it (some of servers
/// cannot) is no failure: nothing was lost. @param file handle of the system, open for writing
/// @return false when it failed; the thread's last error then says why
bool FlushToDisk(void* file);

} // namespace vesk
