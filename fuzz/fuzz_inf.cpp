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

} // namespace

void CheckInput(const std::string& text) {
    if (const auto edited = CommentedOutAppendMenu(text)) {
        // Signs are put in and nothing is taken away; the words get the letters' case of our own.
        Require(edited->size() > text.size());
        Require(Plain(*edited) == Plain(text));
    }
    Require(AppendMenuFile(text).size() <= text.size());
    Require(text.find(StripLeadingNumbering(text)) != std::string::npos);
    if (const auto name = PrefixedName(text, "100"))
        Require(name->starts_with("100"));
    ListHolds(text, "1");
    Require(ListHolds("0," + text + ",2", text) == (text.find(',') == std::string::npos));
    try {
        SeparatorName("100", text);
    } catch (const Failure&) { // a title that is too long
        Require(text.size() > 50);
    }
}
