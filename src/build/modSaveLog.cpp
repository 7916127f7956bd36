#include "base/modFile.h"
#include "build/BuildLog.h"

namespace vesk {

void SaveBuildLog(const std::string& programPath, const std::string& text) {
    const std::string path = programPath + kLogFileName;
    if (!text.empty())
        WriteCompleteFile(path, text);
    else if (FileExists(path))
        RemoveFile(path);
}

} // namespace vesk
