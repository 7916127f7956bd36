#pragma once

#include "base/UniqueHandle.h"
#include "build/clsInstallFolder.h"

#include <string>
#include <vector>

namespace vesk {

/// Keeps every other build, in this process or another, out of an installation folder, out of the
/// folders in it, and out of those that it lies in, for as long as it lives.
class clsBuildLock {
public:
    /// @throws FolderRefused, naming who builds there now
    explicit clsBuildLock(const clsInstallFolder& folder);

    /// The folder stands now: keeps others out of it under any other name as well, such as a drive
    /// that is made for what is in it.
    void NoteFolder();

private:
    void Take(const std::string& name);
    void Sign(const std::string& name);
    void RefuseIfTaken(const std::string& name) const;

    std::string path_;
    /// Pages of memory that say who builds: "at" the folder, and "below" each one that it lies in.
    std::vector<MappingHandle> notes_;
};

} // namespace vesk
