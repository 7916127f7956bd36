#include "net/modSocketValue.h"

#include "base/Failure.h"
#include "net/clsByteQueue.h"
#include "net/modSocketErrors.h"

#include <doctest/doctest.h>

#include <functional>

using namespace vesk;

namespace {

std::uint32_t NumberOfFailure(const std::function<void()>& action) {
    try {
        action();
    } catch (const Failure& failure) {
        CHECK(failure.source == "clsSocketMaster.Method");
        return failure.number;
    }
    return 0;
}

} // namespace

TEST_CASE("ports and lengths from values of every kind") {
    struct Row {
        SocketValue value;
        std::uint32_t portError, lengthError;
    };
    for (const Row& row : {Row{80, 0, 0}, Row{0, 0, 40014}, Row{65535, 0, 0}, Row{65536, 40014, 0},
                           Row{-1, 40014, 40014}, Row{std::string(" 80 "), 0, 0},
                           Row{std::string("80x"), 40014, 40014}, Row{std::string(), 40014, 40014},
                           Row{std::string("nan"), 40014, 40014}, Row{1e300, 40014, 40014},
                           Row{80.4, 0, 0}, Row{std::uint8_t{7}, 0, 0}, Row{true, 40014, 40014},
                           Row{SocketBytes{80}, 40018, 40014}, Row{{}, 40018, 0}}) {
        CAPTURE(row.value.index());
        CHECK(NumberOfFailure([&] { PortOf(row.value, "Method"); }) == row.portError);
        CHECK(NumberOfFailure([&] { LengthLimitOf(row.value, "Method"); }) == row.lengthError);
    }
    CHECK(PortOf(std::string(" 8080 "), "Method") == 8080);
    CHECK(NumberOfFailure([] { BytesOf(80, "Method"); }) == 40018);
    CHECK(NumberOfFailure([] { HostOf(80, "Method"); }) == 40018);
    CHECK(BytesOf(SocketBytes{65, 0, 66}, "Method") == std::string_view("A\0B", 3));
}

TEST_CASE("bytes become values, low byte first") {
    const std::string bytes = std::string("\x01\x02\x00\x80\x00\x00\x00\x40xyz", 11);
    struct Row {
        VarType type;
        SocketValue value;
    };
    for (const Row& row :
         {Row{VarType::Byte, std::uint8_t{1}}, Row{VarType::Integer, std::int16_t{0x201}},
          Row{VarType::Boolean, true}, Row{VarType::Long, std::int32_t(0x80000201)},
          Row{VarType::String, bytes},
          Row{VarType::ByteArray, SocketBytes(bytes.begin(), bytes.end())}}) {
        CAPTURE(static_cast<int>(row.type));
        const std::size_t taken = BytesTaken(bytes.size(), row.type, "Method");
        CHECK(ValueOfBytes(std::string_view(bytes).substr(0, taken), row.type) == row.value);
    }
    CHECK(std::get<double>(ValueOfBytes(bytes.substr(0, 8), VarType::Double)) > 2.0);
    CHECK(std::get<float>(ValueOfBytes(bytes.substr(4, 4), VarType::Single)) == 2.0F);
    CHECK(NumberOfFailure([] { BytesTaken(3, VarType::Long, "Method"); }) == 40014);
    CHECK(NumberOfFailure([] { BytesTaken(3, static_cast<VarType>(9), "Method"); }) == 40018);
}

TEST_CASE("a byte queue gives back what went in, in place and in any pieces") {
    clsByteQueue queue;
    std::string taken, sent;
    for (std::size_t i = 0; i < 500; ++i) {
        const std::string piece(i % 37, static_cast<char>('a' + i % 26));
        queue.Append(piece);
        sent += piece;
        const std::size_t count = std::min<std::size_t>(i % 41, queue.Size());
        taken += queue.Bytes().substr(0, count);
        queue.Drop(count);
    }
    CHECK(taken + std::string(queue.Bytes()) == sent);
    queue.Drop(1000000);
    CHECK(queue.Empty());

    const auto room = queue.Room(4096);
    room[4095] = 'x';
    queue.Commit(1);
    queue.Drop(1);
    CHECK(queue.Room(4096).data() == room.data()); // emptied: the same memory again
}

TEST_CASE("error texts") {
    CHECK(GetErrorDescription(10061) == "Connection refused.");
    CHECK(GetErrorDescription(11004) == "Valid name, no data record of requested type.");
    CHECK(GetErrorDescription(10059) == "Unknown error.");
}
