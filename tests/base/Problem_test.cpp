#include "base/Problem.h"

#include "ExpectedText.h"
#include "base/Failure.h"
#include "base/modResumeNext.h"

#include <new>
#include <vector>

using namespace vesk;

TEST_CASE("a sentence becomes the end of another one") {
    test::CheckFunctions("reasons", {{"reason", AsReason}});
}

TEST_CASE("no name begins a line of its own") {
    CHECK(Problem{"a\r\nb.zip", "not\tmade", "x\x1B\x7F"}.Line() == "a??b.zip: not?made, x??");
}

TEST_CASE("what fails is reported once, with the reason alone, and the run goes on") {
    std::vector<std::string> lines;
    const ProblemReport report = [&](const Problem& problem) { lines.push_back(problem.Line()); };
    const Attempt attempt{"a.zip: b.txt", "not written"};
    CHECK(ResumeNext(report, attempt, [] {}));
    CHECK(lines.empty());
    CHECK_FALSE(ResumeNext(report, attempt, [] {
        throw Failure(112, "x", "cannot write C:\\b.txt: Disk full.", "Disk full.");
    }));
    CHECK_FALSE(ResumeNext(report, attempt, [] { throw Failure(9, "x", "No category."); }));
    CHECK_FALSE(ResumeNext(report, attempt, [] { throw std::bad_alloc(); }));
    CHECK(lines == std::vector<std::string>{"a.zip: b.txt: not written, disk full",
                                            "a.zip: b.txt: not written, no category",
                                            "a.zip: b.txt: not written, not enough memory"});
}
