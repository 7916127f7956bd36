#include "Input.h"
#include "base/Failure.h"
#include "base/modText.h"
#include "build/modInfText.h"

using namespace vesk;

namespace {

std::string Plain(std::string text) {
    std::erase(text, ';');
    return LowerCase(text);
}

/// A menu's name stands behind the section's first comma, up to the line's end.
void CheckMenuFile(const std::string& text) {
    const std::string line = text.substr(0, text.find('\r'));
    Require(AppendMenuFile("[Append]\r\nnu2menu.xml, " + text + "\r\n") == TrimBlanks(line));
    const std::string file = AppendMenuFile(text);
    if (file.empty())
        return;
    const std::size_t start = text.find(',', LowerCase(text).find("[append]")) + 1;
    Require(file == TrimBlanks(text.substr(start, text.find('\r', start) - start)));
}

} // namespace

void CheckInput(const std::string& text) {
    if (const auto edited = CommentedOutAppendMenu(text)) {
        // Signs are put in and nothing is taken away; the words get the letters' case of our own.
        Require(edited->size() > text.size());
        Require(Plain(*edited) == Plain(text));
    }
    CheckMenuFile(text);
    Require(text.find(StripLeadingNumbering(text)) != std::string::npos);
    if (const auto name = PrefixedName(text, "100"))
        Require(name->starts_with("100"));
    Require(ListHolds(text, "1") == (("," + text + ",").find(",1,") != std::string::npos));
    Require(ListHolds("0," + text + ",2", text) == (text.find(',') == std::string::npos));
    try {
        SeparatorName("100", text);
    } catch (const Failure&) { // a title that is too long
        Require(text.size() > 50);
    }
}
