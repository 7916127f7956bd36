#include "catalogue/modArchiveState.h"

#include "ExpectedText.h"

using namespace vesk;

TEST_CASE("what a build does about an archive, and what is said of it") {
    constexpr EntryPlace kPe{EntryList::BaseComponents, 0};
    constexpr EntryPlace kBase{EntryList::BaseComponents, 1};
    constexpr EntryPlace kPlugin{EntryList::Plugins, 0};
    const ArchiveFacts missing, noName{false, false, std::nullopt};
    const ArchiveFacts good{true, true, "1F"}, other{true, true, "2E"};
    const ArchiveFacts empty{true, true, ""}, unread{true, true, std::nullopt};
    const ArchiveFacts forged{true, true, "1F", "SHA-256 differs"};
    const std::string pe = "PEBuilder3110a.ZIP", url = "http://h/x";
    struct Row {
        const char* name;
        EntryPlace place;
        std::string zip, url, crc;
        ArchiveFacts facts;
    };
    std::string text;
    for (const Row& row : {
             Row{"good", kPlugin, "a.zip", "", "1F", good},
             Row{"not read yet", kPlugin, "a.CAB", "", "1F", unread},
             Row{"other: not fetched", kPlugin, "a.zip", url, "1F", other},
             Row{"in lower case", kPlugin, "a.zip", url, "1f", good},
             Row{"forged", kPlugin, "a.zip", url, "1F", forged},
             Row{"empty", kPlugin, "a.zip", "", "1F", empty},
             Row{"empty, without a checksum", kPlugin, "a.zip", "", "", empty},
             Row{"without a checksum", kPlugin, "a.zip", "", "", good},
             Row{"fetched in vain", kPlugin, "a.zip", url, "", missing},
             Row{"missing", kPlugin, "a.zip", "", "1F", missing},
             Row{"to download", kPlugin, "a.zip", url, "1F", missing},
             Row{"no file name", kPlugin, "..\\a.zip", url, "1F", noName},
             Row{"another kind", kPlugin, "a.rar", url, "1F", good},
             Row{"base component", kBase, "a.zip", "", "1F", good},
             Row{"base component, not read yet", kBase, "a.zip", "", "1F", unread},
             Row{"base component, missing", kBase, "a.zip", url, "1F", missing},
             Row{"base component, other", kBase, "a.zip", url, "1F", other},
             Row{"PE Builder", kPe, pe, "", "1F", good},
             Row{"PE Builder, other, no address", kPe, pe, "", "1F", other},
             Row{"PE Builder, other", kPe, pe, url, "1F", other},
             Row{"PE Builder, empty", kPe, pe, url, "1F", empty},
             Row{"PE Builder, to download", kPe, pe, url, "1F", missing},
             Row{"PE Builder, missing", kPe, pe, "", "1F", missing},
             Row{"PE Builder, wrong name", kPe, "other.zip", url, "1F", good},
         }) {
        CatalogueEntry entry{"x", row.zip, "", true, false, row.url, row.crc};
        const ArchiveState state = JudgeArchive(entry, row.place, row.facts);
        text += std::string(row.name) + ": " + ArchiveWords(entry, row.place, state);
        entry.enabled = false;
        text += "; unticked: " + ArchiveWords(entry, row.place, state) +
                (ComesIntoBuild(state) ? "; comes into the build\n  " : "\n  ") +
                ArchiveSentence(entry, row.place, state) + "\n";
    }
    test::CheckExpected("archive_states", text);
}
