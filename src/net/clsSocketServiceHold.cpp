#include "net/clsSocketServiceHold.h"

#include "base/Failure.h"
#include "base/modTrace.h"

#include <string>

namespace vesk {

clsSocketServiceHold::clsSocketServiceHold() {
    try {
        InitiateProcesses();
        started_ = true;
        placeholder_.Reset(::socket(AF_INET, SOCK_STREAM, 0));
        if (placeholder_)
            RegisterSocket(placeholder_.Get(), {}, false);
    } catch (const Failure& failure) {
        Trace(std::string("WARNING: ") + failure.what());
    }
}

clsSocketServiceHold::~clsSocketServiceHold() {
    if (placeholder_)
        UnregisterSocket(placeholder_.Get());
    placeholder_.Reset(); // before the service ends
    if (started_)
        FinalizeProcesses();
}

} // namespace vesk
