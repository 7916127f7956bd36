#pragma once

#include "base/UniqueHandle.h"
#include "build/clsInstallFolder.h"

namespace vesk {

/// Keeps every other build, in this process or another, out of an installation folder for as long
/// as it lives.
class clsBuildLock {
public:
    /// @throws FolderRefused, naming who builds into the folder now
    explicit clsBuildLock(const clsInstallFolder& folder);

private:
    MappingHandle note_; ///< A page of memory under the folder's name, saying who has it.
};

} // namespace vesk
