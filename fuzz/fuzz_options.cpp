#include "Input.h"
#include "base/modText.h"
#include "console/modOptions.h"

#include <algorithm>

using namespace vesk;

namespace {

/// What was read of a command line, as a command line.
std::vector<std::string> WordsOf(const ConsoleOptions& options) {
    std::vector<std::string> words;
    const auto add = [&](const char* option, const std::optional<std::string>& value) {
        if (value)
            words.insert(words.end(), {option, *value});
    };
    const auto addSwitch = [&](const char* option, bool isOn) {
        if (isOn)
            words.emplace_back(option);
    };
    add("--install", options.install);
    add("--source", options.source);
    for (const std::string& name : options.enable)
        add("--enable", name);
    for (const std::string& name : options.disable)
        add("--disable", name);
    add("--password", options.password);
    if (options.proxy)
        add("--proxy", options.proxy->host + ":" + std::to_string(options.proxy->port));
    add("--timeout", std::to_string(options.timeout));
    addSwitch("--yes", options.answer == true);
    addSwitch("--no", options.answer == false);
    addSwitch("--replace-foreign", options.replaceForeign);
    addSwitch("--partial", options.partial);
    addSwitch("--quiet", options.quiet);
    using Action = ConsoleOptions::Action;
    addSwitch("--list", options.action == Action::List);
    addSwitch("--check", options.action == Action::Check);
    addSwitch("--help", options.action == Action::Help);
    addSwitch("--version", options.action == Action::Version);
    return words;
}

} // namespace

/// The input's lines as words of a command line: what is read means the same when it is said again,
/// and everything that was said is in it.
void CheckInput(const std::string& text) {
    const std::vector<std::string> words = Split(text, '\n');
    try {
        const ConsoleOptions options = ParseOptions(words);
        const std::vector<std::string> again = WordsOf(options);
        Require(WordsOf(ParseOptions(again)) == again);
        Require(options.timeout >= 0 && options.timeout <= 86400);
        Require(!options.proxy || (options.proxy->port >= 1 && options.proxy->port <= 65535 &&
                                   options.proxy->host.find_first_of(":/@ ") == std::string::npos));
        const auto isSaid =
            [&](const std::string& word) { // a later one takes an earlier one's place
                return !word.starts_with("--") || word == "--timeout" ||
                       std::ranges::find(words, word) != words.end();
            };
        Require(std::ranges::all_of(again, isSaid));
        for (const std::string& name : options.enable)
            Require(std::ranges::find(words, name) != words.end());
    } catch (const UsageError& error) {
        Require(*error.what() != '\0');
    }
}
