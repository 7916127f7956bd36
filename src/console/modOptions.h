#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace vesk {

/// A command line that cannot be carried out; the text is a sentence for the user.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Host and port of the --proxy option.
struct ProxyAddress {
    std::string host;
    int port = 0; ///< 1 to 65535
};

/// What veskbuild is to do.
struct ConsoleOptions {
    enum class Action { Build, List, Check, Help, Version };

    Action action = Action::Build;
    std::optional<std::string> install;
    std::optional<std::string> source;
    std::vector<std::string> enable;
    std::vector<std::string> disable;
    std::optional<bool> answer;  ///< To every question; nothing: ask on the console.
    bool replaceForeign = false; ///< Empty a folder that holds what no build made, too.
    bool partial = false;        ///< Build from a catalogue of which only a part could be read.
    std::optional<std::string> password; ///< Of encrypted archives.
    std::optional<ProxyAddress> proxy;
    int timeout = 120; ///< Seconds without a byte after which a download is given up; 0: never.
    bool quiet = false;
};

/// Reads the arguments behind the program name. @throws UsageError
ConsoleOptions ParseOptions(const std::vector<std::string>& arguments);

/// The text of --help.
std::string HelpText();

} // namespace vesk
