#include "net/modSocketValue.h"

#include "ExpectedText.h"
#include "net/modSocketErrors.h"

using namespace vesk;

namespace {

std::uint32_t NumberOfFailure(const std::function<void()>& action) {
    const Failure failure = test::FailureIn(action);
    CHECK(failure.source == (failure.number == 0 ? "" : "clsSocketMaster.Method"));
    return failure.number;
}

} // namespace

TEST_CASE("ports and lengths from values of every kind") {
    struct Row {
        SocketValue value;
        std::uint32_t portError, lengthError;
    };
    for (const Row& row :
         {Row{80, 0, 0}, Row{0, 0, 40014}, Row{1, 0, 0}, Row{65535, 0, 0}, Row{65536, 40014, 0},
          Row{-1, 40014, 40014}, Row{std::string(" 80 "), 0, 0},
          Row{std::string("80x"), 40014, 40014}, Row{std::string(), 40014, 40014},
          Row{std::string("nan"), 40014, 40014}, Row{1e300, 40014, 40014}, Row{80.4, 0, 0},
          Row{std::uint8_t{7}, 0, 0}, Row{true, 40014, 40014}, Row{SocketBytes{80}, 40018, 40014},
          Row{{}, 40018, 0}}) {
        CAPTURE(row.value.index());
        CHECK(NumberOfFailure([&] { PortOf(row.value, "Method"); }) == row.portError);
        CHECK(NumberOfFailure([&] { LengthLimitOf(row.value, "Method"); }) == row.lengthError);
    }
    CHECK(PortOf(std::string(" 8080 "), "Method") == 8080);
    CHECK(NumberOfFailure([] { BytesOf(80, "Method"); }) == 40018);
    CHECK(NumberOfFailure([] { HostOf(80, "Method"); }) == 40018);
    CHECK(NumberOfFailure([] { BytesTaken(3, VarType::Long, "Method"); }) == 40014);
    CHECK(NumberOfFailure([] { BytesTaken(3, static_cast<VarType>(9), "Method"); }) == 40018);
    CHECK(BytesOf(SocketBytes{65, 0, 66}, "Method") == std::string_view("A\0B", 3));
}

TEST_CASE("the system's errors have the texts that users know") {
    test::CheckLines("socket_errors",
                     [](const auto& code) { return GetErrorDescription(std::stoi(code)); });
}
