#include "catalogue/modSha256Text.h"

#include "ExpectedText.h"

using namespace vesk;

namespace {

/// "{a}" stands for a digest of that digit only.
std::string Filled(std::string text) {
    for (const char digit : {'a', 'A', 'b'})
        text = ReplaceAll(text, std::string{'{', digit, '}'}, std::string(64, digit));
    return text;
}

std::string Shortened(std::string text) {
    for (const char digit : {'a', 'A', 'b'})
        text = ReplaceAll(text, std::string(64, digit), std::string{'{', digit, '}'});
    return text;
}

std::string Read(const std::string& text) {
    const Sha256Text list = ParseSha256Text(Filled(text));
    std::string told;
    for (const auto& [name, digest] : list.digests)
        told += "<" + name + "> " + digest + "; ";
    for (const std::string& fault : list.faults)
        told += fault + "; ";
    return Shortened(told);
}

} // namespace

TEST_CASE(
    "lists of digests are read as sha256sum writes them, and a digest takes its line in one") {
    const auto takeLine = [](const std::string& list) {
        return Shortened(WithSha256(Filled(list), "b.zip", std::string(64, 'a')));
    };
    test::CheckFunctions("digest_lists", {{"read", Read}, {"b.zip", takeLine}});
}
