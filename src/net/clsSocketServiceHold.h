#pragma once

#include "net/modSocketMaster.h"

namespace vesk {

/// Keeps service and message window between one download and the next, which would make them again:
/// for a run of many small files that is half of its time. Where the system refuses, whoever wants
/// a socket is told; this is not.
class clsSocketServiceHold {
public:
    /// Begins to keep both. Throws nothing.
    clsSocketServiceHold();
    clsSocketServiceHold(const clsSocketServiceHold&) = delete;
    clsSocketServiceHold& operator=(const clsSocketServiceHold&) = delete;
    ~clsSocketServiceHold();

private:
    bool started_ = false;
    SocketOwner placeholder_; ///< Registered, and never bound or connected.
};

} // namespace vesk
