#include "base/Problem.h"

#include "base/Failure.h"

#include <algorithm>
#include <new>

namespace vesk {

namespace {

bool IsUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

/// "Disk full" begins with an ordinary word; "HTTP/1.1 404", "C:\x" and "I386" do not.
bool BeginsWithOrdinaryWord(std::string_view text) {
    return text.size() > 1 && IsUpper(text[0]) && text[1] >= 'a' && text[1] <= 'z';
}

/// Names come from archives and catalogues: none may begin a line of its own.
std::string WithoutControls(std::string text, char instead) {
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, instead);
    return text;
}

} // namespace

std::string Problem::Line() const {
    return WithoutControls(place + ": " + what + ", " + reason, '?');
}

std::string AsReason(std::string_view sentence) {
    std::string reason = WithoutControls(std::string(sentence), ' ');
    reason.erase(reason.find_last_not_of(" .") + 1);
    reason.erase(0, reason.find_first_not_of(' '));
    if (BeginsWithOrdinaryWord(reason))
        reason[0] = static_cast<char>(reason[0] - 'A' + 'a');
    return reason;
}

std::string ReasonOf(const std::exception& failure) {
    if (const auto* known = dynamic_cast<const Failure*>(&failure))
        return AsReason(known->reason);
    if (dynamic_cast<const std::bad_alloc*>(&failure) != nullptr)
        return "not enough memory";
    return AsReason(failure.what());
}

} // namespace vesk
