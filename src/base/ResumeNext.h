#pragma once

#include "base/Trace.h"

#include <exception>
#include <string>
#include <utility>

namespace vesk {

/// Runs one statement of the build run and goes on whatever becomes of it: a failure inside it is
/// traced and dropped. The only place that swallows failures wholesale.
/// @return true when the statement held.
template <class Statement>
bool ResumeNext(Statement&& statement) {
    try {
        std::forward<Statement>(statement)();
        return true;
    } catch (const std::exception& failure) {
        Trace(std::string("skipped: ") + failure.what());
        return false;
    }
}

} // namespace vesk
