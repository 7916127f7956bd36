#include "build/BuildContext.h"

#include "archive/clsCRC.h"
#include "base/Trace.h"

namespace vesk {

std::string BuildContext::FileCrc(const std::string& path) const {
    return clsCRC().CalculateFile(path, [this] { frontEnd.LetEventsRun(); });
}

void BuildContext::MarkTree() const {
    vesk::ResumeNext([](const Problem& problem) { Trace(problem.Line()); },
                     {InstallFolder(), "not marked as unfinished"},
                     [this] { inputs.installFolder.Mark(); });
}

} // namespace vesk
