#include "build/clsBuildContext.h"

#include "base/modTrace.h"

namespace vesk {

void clsBuildContext::MarkTree() const {
    vesk::ResumeNext([](const Problem& problem) { Trace(problem.Line()); },
                     {InstallFolder(), "not marked as unfinished"},
                     [this] { inputs.installFolder.Mark(); });
}

} // namespace vesk
