#include "base/modTrace.h"

namespace vesk {

namespace {
TraceSink currentSink = nullptr;
}

void SetTraceSink(TraceSink sink) {
    currentSink = sink;
}

void Trace(const std::string& line) {
    if (currentSink != nullptr)
        currentSink(line);
}

} // namespace vesk
