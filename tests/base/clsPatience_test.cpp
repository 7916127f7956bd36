#include "base/clsPatience.h"

#include "TestFolder.h"
#include "base/Failure.h"

using namespace vesk;
using namespace vesk::test;

TEST_CASE("waiting helps where a refusal passes, and takes little where it does not") {
    std::uint32_t time = 0xFFFFFF00; // the system's clock begins anew after 49 days
    clsPatience patience([&] { return time; }, [&](std::uint32_t step) { time += step; });
    /// How long a call takes that is refused some times, and then succeeds.
    const auto waitFor = [&](DWORD error, int refusals) {
        const std::uint32_t begin = time;
        const bool done = patience.Try([&] {
            SetLastError(error);
            return refusals-- <= 0;
        });
        CHECK(done == (refusals < 0));
        return time - begin;
    };
    for (int i = 0; i < 10; ++i) { // what helped is not counted
        CHECK(waitFor(ERROR_SUCCESS, 0) == 0);
        CHECK(waitFor(ERROR_SHARING_VIOLATION, 1) == 50);
        CHECK(waitFor(ERROR_DIR_NOT_EMPTY, 30) == 1500);
        CHECK(waitFor(ERROR_PATH_NOT_FOUND, 1) == 0);
    }
    std::uint32_t inVain = 0;
    for (int i = 0; i < 1000; ++i)
        inVain += waitFor(ERROR_ACCESS_DENIED, 99);
    CHECK(inVain >= 3000);
    CHECK(inVain < 3500);
    time += 5000;
    CHECK(waitFor(ERROR_ACCESS_DENIED, 99) == 500);
}

TEST_CASE("what somebody has open for a moment is replaced, renamed and removed all the same") {
    const TestFolder folder;
    const std::string path = folder.Write("a", "old");
    const auto whileOpen = [&](const std::string& opened, const std::function<void()>& act) {
        FileHandle lock = OpenExclusively(opened);
        int steps = 0;
        const clsPatience::Meanwhile meanwhile(clsPatience::OfProgram(), [&] {
            if (++steps == 3)
                lock.Reset();
        });
        act();
        CHECK(steps == 3);
    };
    whileOpen(path, [&] { WriteCompleteFile(path, "new"); });
    CHECK(ReadWholeFile(path) == "new");
    whileOpen(path, [&] { MovePath(path, folder / "b"); });
    whileOpen(folder / "b", [&] { RemoveFile(folder / "b"); });
    CHECK(StateOf(folder / "b") == PathState::Nothing);
    int refusals = 1;
    CHECK(CreatePatiently(Widen(folder / "b"), [&] {
        SetLastError(ERROR_ACCESS_DENIED);
        return refusals-- == 0;
    }));
}
