#pragma once

#include <optional>
#include <string>

namespace vesk {

/// The program's three streams. The standard output gets what was asked for: the lines of the log,
/// or what --list, --check, --help and --version print. The error output gets errors, problems,
/// questions and, only when it is a terminal, the progress that is drawn.
class clsTerminal {
public:
    /// @param quiet draws no progress; everything else is printed all the same
    explicit clsTerminal(bool quiet);
    clsTerminal(const clsTerminal&) = delete;
    clsTerminal& operator=(const clsTerminal&) = delete;
    ~clsTerminal();

    /// Prints a line on the standard output, at once.
    void PrintLine(const std::string& line);

    /// Prints lines that each end with a line feed, all of them at once.
    void PrintLines(const std::string& lines);

    /// Draws one line that the next one replaces. Cut at the terminal's width.
    void Draw(const std::string& text);

    /// Prints a sentence on the error output, behind the program's name.
    void Complain(const std::string& sentence);

    /// Asks on the error output and reads a line from the standard input.
    /// @return true for an answer that begins with "y"; false also when there is nobody to ask
    bool Ask(const std::string& question);

    /// The same for a text that must not be seen: nothing typed is shown.
    /// @return nothing when there is nobody to ask, or nothing was typed
    std::optional<std::string> AskSecret(const std::string& question);

    /// False once something could not be written to the standard output.
    [[nodiscard]] static bool OutputIsWhole();

private:
    void Erase();

    bool draws_;
    std::string drawn_;
};

} // namespace vesk
