#include "catalogue/modArchiveState.h"

#include <doctest/doctest.h>

using namespace vesk;
using State = ArchiveState;

TEST_CASE("what a build does about an archive") {
    constexpr EntryPlace kPe{EntryList::BaseComponents, 0};
    constexpr EntryPlace kBase{EntryList::BaseComponents, 1};
    constexpr EntryPlace kPlugin{EntryList::Plugins, 0};
    const ArchiveFacts missing;
    const ArchiveFacts good{true, true, "1F"};
    const ArchiveFacts other{true, true, "2E"};
    const ArchiveFacts empty{true, true, ""};
    const ArchiveFacts unread{true, true, std::nullopt};
    const ArchiveFacts noName{false, false, std::nullopt};
    const std::string pe = "PEBuilder3110a.ZIP";
    const std::string url = "http://h/x";
    struct Row {
        EntryPlace place;
        std::string zip, url, crc;
        ArchiveFacts facts;
        State state;
    };
    for (const Row& row : {
             Row{kPlugin, "a.zip", "", "1F", good, State::Good},
             Row{kPlugin, "a.CAB", "", "1F", unread, State::Unchecked},
             Row{kPlugin, "a.zip", url, "1F", other, State::CrcDiffers}, // it is there: not fetched
             Row{kPlugin, "a.zip", url, "1f", good, State::CrcDiffers},
             Row{kPlugin, "a.zip", "", "1F", empty, State::Empty},
             Row{kPlugin, "a.zip", "", "", empty,
                 State::NoCrc}, // an empty checksum matches nothing
             Row{kPlugin, "a.zip", "", "", good, State::NoCrc},
             Row{kPlugin, "a.zip", url, "", missing, State::NoCrc}, // fetched in vain
             Row{kPlugin, "a.zip", "", "1F", missing, State::Missing},
             Row{kPlugin, "a.zip", url, "1F", missing, State::ToDownload},
             Row{kPlugin, "..\\a.zip", url, "1F", noName, State::BadName},
             Row{kPlugin, "a.rar", url, "1F", good, State::WrongType},
             Row{kBase, "a.zip", url, "1F", missing, State::Missing}, // only the first is fetched
             Row{kBase, "a.zip", url, "1F", other, State::CrcDiffers},
             Row{kPe, pe, "", "1F", good, State::Good},
             Row{kPe, pe, "", "1F", other, State::CrcDiffers},
             Row{kPe, pe, url, "1F", other, State::ToReplace},
             Row{kPe, pe, url, "1F", empty, State::ToReplace},
             Row{kPe, pe, url, "1F", missing, State::ToDownload},
             Row{kPe, pe, "", "1F", missing, State::Missing},
             Row{kPe, "other.zip", url, "1F", good, State::NotPeBuilder},
         }) {
        CAPTURE(row.zip);
        CAPTURE(row.crc);
        const CatalogueEntry entry{"x", row.zip, "", true, false, row.url, row.crc};
        const State state = JudgeArchive(entry, row.place, row.facts);
        CAPTURE(ArchiveWords(entry, row.place, state));
        CHECK(state == row.state);
    }
}
