#include "console/modOptions.h"

#include "ExpectedText.h"

using namespace vesk;

namespace {

/// What arguments, separated by "|", ask for, or the sentence that refuses them.
std::string Told(const std::string& arguments) try {
    const ConsoleOptions options = ParseOptions(Split(arguments, '|'));
    std::string told =
        "from <" + options.source.value_or("") + "> into <" + options.install.value_or("") + ">";
    for (const std::string& name : options.enable)
        told += " with <" + name + ">";
    for (const std::string& name : options.disable)
        told += " without <" + name + ">";
    if (options.answer)
        told += *options.answer ? " yes" : " no";
    if (options.proxy)
        told += " through " + options.proxy->host + " " + std::to_string(options.proxy->port);
    return told + (options.quiet ? " quiet" : "");
} catch (const UsageError& error) {
    return error.what();
}

} // namespace

TEST_CASE("options are read, and wrong ones refused with a sentence that names them") {
    test::CheckLines("options", Told);
    CHECK(ParseOptions({}).action == ConsoleOptions::Action::Build);
}
