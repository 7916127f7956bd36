#include "console/modOptions.h"

#include "base/modText.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <functional>
#include <map>
#include <string_view>

namespace vesk {

namespace {

/// The same written as an address, as other programs take it, becomes HOST:PORT.
std::string WithoutHttp(const std::string& text) {
    constexpr std::string_view kScheme = "http://";
    if (!StartsWithNoCase(text, kScheme))
        return text;
    return text.substr(kScheme.size(),
                       text.size() - kScheme.size() - (text.ends_with('/') ? 1 : 0));
}

bool IsHostName(const std::string& host) {
    constexpr std::string_view kElsewhere = ":/\\@[]";
    return !host.empty() && std::ranges::all_of(host, [&](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte > ' ' && byte != 0x7F && kElsewhere.find(c) == std::string_view::npos;
    });
}

ProxyAddress ParseProxy(const std::string& text) {
    constexpr int kHighestPort = 65535;
    const std::string address = WithoutHttp(text);
    const std::size_t colon = address.rfind(':');
    ProxyAddress proxy;
    if (colon != std::string::npos) {
        proxy.host = address.substr(0, colon);
        const char* end = address.data() + address.size();
        const auto [stop, error] = std::from_chars(address.data() + colon + 1, end, proxy.port);
        if (error == std::errc() && stop == end && IsHostName(proxy.host) && proxy.port >= 1 &&
            proxy.port <= kHighestPort)
            return proxy;
    }
    throw UsageError("--proxy takes the HOST:PORT of an HTTP proxy, a host name or address without "
                     "user name or path and a port from 1 to 65535, not \"" +
                     text + "\"");
}

int ParseTimeout(const std::string& text) {
    int seconds = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, seconds);
    constexpr int kMost = 86400;
    if (error == std::errc() && stop == end && seconds >= 0 && seconds <= kMost)
        return seconds;
    throw UsageError("--timeout takes seconds from 0 (never) to 86400, not \"" + text + "\"");
}

void Answer(ConsoleOptions& options, bool yes) {
    if (options.answer && *options.answer != yes)
        throw UsageError("--yes and --no exclude each other");
    options.answer = yes;
}

using Setter = std::function<void(ConsoleOptions&, const std::string& value)>;

const std::map<std::string, Setter>& OptionsWithValue() {
    static const std::map<std::string, Setter> kOptions = {
        {"--install", [](auto& options, const auto& value) { options.install = value; }},
        {"--source", [](auto& options, const auto& value) { options.source = value; }},
        {"--enable", [](auto& options, const auto& value) { options.enable.push_back(value); }},
        {"--disable", [](auto& options, const auto& value) { options.disable.push_back(value); }},
        {"--password", [](auto& options, const auto& value) { options.password = value; }},
        {"--timeout",
         [](auto& options, const auto& value) { options.timeout = ParseTimeout(value); }},
        {"--proxy", [](auto& options, const auto& value) { options.proxy = ParseProxy(value); }},
    };
    return kOptions;
}

const std::map<std::string, std::function<void(ConsoleOptions&)>>& Switches() {
    using Action = ConsoleOptions::Action;
    static const std::map<std::string, std::function<void(ConsoleOptions&)>> kSwitches = {
        {"--yes", [](auto& options) { Answer(options, true); }},
        {"--no", [](auto& options) { Answer(options, false); }},
        {"--replace-foreign", [](auto& options) { options.replaceForeign = true; }},
        {"--partial", [](auto& options) { options.partial = true; }},
        {"--quiet", [](auto& options) { options.quiet = true; }},
        {"--list", [](auto& options) { options.action = Action::List; }},
        {"--check", [](auto& options) { options.action = Action::Check; }},
        {"--help", [](auto& options) { options.action = Action::Help; }},
        {"--version", [](auto& options) { options.action = Action::Version; }},
    };
    return kSwitches;
}

} // namespace

ConsoleOptions ParseOptions(const std::vector<std::string>& arguments) {
    ConsoleOptions options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (const auto plain = Switches().find(argument); plain != Switches().end()) {
            plain->second(options);
            continue;
        }
        const auto valued = OptionsWithValue().find(argument);
        if (valued == OptionsWithValue().end())
            throw UsageError("unknown argument \"" + argument + "\"");
        if (i + 1 == arguments.size() || arguments[i + 1].empty())
            throw UsageError(argument + " needs a value");
        // An option in the place of a value is a value forgotten: no folder or name is called so.
        if (arguments[i + 1].starts_with("--") && argument != "--password")
            throw UsageError(argument + " needs a value, not \"" + arguments[i + 1] + "\"");
        valued->second(options, arguments[++i]);
    }
    return options;
}

std::string HelpText() {
    return R"(veskbuild builds from the catalogue in its own folder and prints the build log.

veskbuild [--install FOLDER] [--source FOLDER] [--enable NAME]... [--disable NAME]...
          [--yes | --no] [--replace-foreign] [--partial] [--password TEXT]
          [--proxy HOST:PORT] [--timeout SECONDS] [--quiet]
veskbuild --list | --check [--enable NAME]... [--disable NAME]... [--password TEXT]
veskbuild --help | --version

  --install FOLDER   build into this folder, not the catalogue's; it is emptied first
  --source FOLDER    the Windows installation source, the folder that holds I386
  --enable NAME      tick a component or plug-in, by its name in the catalogue
  --disable NAME     untick one
  --yes, --no        the answer to every question; without a console to ask, the answer is No
  --replace-foreign  empty the folder even if it holds files that no build made
  --partial          build even if the catalogue could not be read in full
  --password TEXT    the password of encrypted archives
  --proxy HOST:PORT  download through this HTTP proxy
  --timeout SECONDS  give a download up after this long without a byte (120; 0: never)
  --quiet            draw no progress; log lines, problems and errors are printed
  --list             print the catalogue as a table
  --check            print what would go wrong in a build, one line each

Exit codes:
   0  done, and everything is in the tree (--check: nothing was found that would go wrong)
   1  done, with warnings or problems (--check: something is wrong; --list: the catalogue
      was not read, or not printed, in full; both: an --enable or --disable had no effect)
   2  install failed: PE Builder's archive arrived damaged; the old tree was not touched
   3  aborted: the answer No, Ctrl+C, or an old tree that could not be replaced safely
   4  refused at start-up: not Windows NT, not an administrator, or Windows could not be asked
   5  PE Builder's archive is not in the tree
  64  wrong usage, or an unusable folder or catalogue; nothing was changed
  70  the program itself failed
)";
}

} // namespace vesk
