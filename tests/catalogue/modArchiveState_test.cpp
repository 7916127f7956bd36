#include "catalogue/modArchiveState.h"

#include "ExpectedText.h"

#include <map>

using namespace vesk;

TEST_CASE("what a build does about an archive, and what is said of it") {
    const std::map<std::string, EntryPlace> places = {
        {"PE Builder", {EntryList::BaseComponents, 0}},
        {"base component", {EntryList::BaseComponents, 1}},
        {"plug-in", {EntryList::Plugins, 0}},
    };
    const std::map<std::string, ArchiveFacts> states = {
        {"missing", {}},
        {"without a file name", {false, false, std::nullopt}},
        {"good", {true, true, "1F"}},
        {"other", {true, true, "2E"}},
        {"empty", {true, true, ""}},
        {"not read yet", {true, true, std::nullopt}},
        {"forged", {true, true, "1F", "SHA-256 differs"}},
    };
    test::CheckAnswers("archive_states", [&](const std::string& question) {
        const auto words = Split(question, '|'); // place, archive, address, checksum, its state
        const EntryPlace place = places.at(words.at(0));
        CatalogueEntry entry{"x", words.at(1), "", true, false, words.at(2), words.at(3)};
        const ArchiveState state = JudgeArchive(entry, place, states.at(words.at(4)));
        const std::string ticked = ArchiveWords(entry, place, state);
        entry.enabled = false;
        return ticked + "; unticked: " + ArchiveWords(entry, place, state) +
               (ComesIntoBuild(state) ? "; comes into the build\n  " : "\n  ") +
               ArchiveSentence(entry, place, state) + "\n";
    });
}
