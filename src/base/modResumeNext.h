#pragma once

#include "base/Problem.h"

#include <exception>
#include <string>
#include <utility>

namespace vesk {

/// What a statement is about to do, in the words in which its failure is reported.
struct Attempt {
    std::string place; ///< See Problem::place.
    std::string what;  ///< What was not done when it fails: "not removed".
};

/// Runs one statement of the build run and goes on whatever becomes of it: a failure inside it is
/// reported as a problem and dropped. Nothing else swallows failures wholesale, except the sockets'
/// window procedure.
/// @return true when the statement succeeded
template <class Statement>
bool ResumeNext(const ProblemReport& report, const Attempt& attempt, Statement&& statement) {
    try {
        std::forward<Statement>(statement)();
        return true;
    } catch (const std::exception& failure) {
        report({attempt.place, attempt.what, ReasonOf(failure)});
        return false;
    }
}

} // namespace vesk
