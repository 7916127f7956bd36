#include "ui/wizard/modWizardText.h"

#include <doctest/doctest.h>

using namespace vesk;

namespace {

CatalogueEntry Entry(const char* name, bool enabled) {
    CatalogueEntry entry;
    entry.name = name;
    entry.enabled = enabled;
    return entry;
}

} // namespace

TEST_CASE("the summary tells what is ticked and the two folders") {
    Catalogue catalogue;
    catalogue.baseComponents = {Entry("PE", true), Entry("Old", false)};
    catalogue.plugins = {Entry("One", true), Entry("Two", false)};
    CHECK(SummaryText({catalogue, "C:\\Tree", "D:\\", true}) ==
          "Base Components:\r\n   PE\r\n\r\nPlugins:\r\n   One\r\n\r\n"
          "Installation path: C:\\Tree\r\nSource path: D:\\\r\n\r\n"
          "Press Next to continue with the installation.");
    catalogue.plugins.clear();
    CHECK(SummaryText({catalogue, "C:\\Tree", "D:\\", false}) ==
          "Base Components:\r\n   PE\r\n\r\nPlugins:\r\n\r\n"
          "Installation path: C:\\Tree\r\nSource path: Invalid\r\n\r\n"
          "Press Next to continue with the installation.");
}

TEST_CASE("a tool tip tells where the archive is and comes from") {
    CatalogueEntry entry = Entry("One", true);
    entry.zip = "one.zip";
    entry.url = "http://a/one.zip, http://b/one.zip";
    entry.crc = "12AB";
    entry.lock = true;
    const EntryPlace place{EntryList::Plugins, 0};
    CHECK(EntryTip(entry, place, ArchiveState::ToDownload) ==
          "Archive: one.zip\r\nAddress: http://a/one.zip\r\nAddress: http://b/one.zip\r\n"
          "CRC-32: 12AB\r\nThe archive is not there yet: the build downloads it.\r\n"
          "This entry is locked: its tick cannot be changed.");
    CHECK(StateText(entry, place, ArchiveState::Good) == "Good, locked");
    entry.lock = false;
    CHECK(StateText(entry, place, ArchiveState::ToDownload) == "To download");
    entry.enabled = false;
    CHECK(StateText(entry, place, ArchiveState::ToDownload) == "Missing, downloaded if ticked");
    CHECK(InBuildText(entry, EntryList::Plugins, ArchiveState::Good) == "no");
    // A base component comes into the build whatever its tick.
    const EntryPlace base{EntryList::BaseComponents, 1};
    CHECK(StateText(entry, base, ArchiveState::Good) == "Good, built though unticked");
    CHECK(EntryTip(entry, base, ArchiveState::Good).ends_with("ticked or not."));
    CHECK(InBuildText(entry, base.list, ArchiveState::Good).starts_with("yes"));
    CHECK(InBuildText(entry, base.list, ArchiveState::Missing).starts_with("no"));
}

TEST_CASE("the installation folder has no trailing backslash, a whole drive keeps it") {
    CHECK(InstallFolderOf(" C:\\Tree\\ ") == "C:\\Tree");
    CHECK(InstallFolderOf("C:\\") == "C:\\");
    CHECK(InstallFolderOf("C:") == "C:\\"); // never that drive's current folder: it is emptied
    CHECK(InstallFolderOf("  ").empty());
}

TEST_CASE("speed and time left are told as far as they are known") {
    CHECK(RateText(0, 5).empty());
    CHECK(RateText(1500, -1) == "1.5 kB/s");
    CHECK(RateText(2500000, 1) == "2.5 MB/s, 1 second left");
    CHECK(RateText(50000, 119) == "50.0 kB/s, 119 seconds left");
    CHECK(RateText(50000, 150) == "50.0 kB/s, 3 minutes left");
    DownloadProgress progress;
    progress.bytesPerSecond = 5e7;
    CHECK(DownloadDetail(progress) == "50.0 MB/s");
    progress.silence = 30;
    CHECK(DownloadDetail(progress) == "No data for 30 s");
}

TEST_CASE("the user is told beforehand when PE Builder will not be in what is built") {
    CatalogueEntry peBuilder = Entry("PE Builder", true);
    peBuilder.zip = kFirstArchiveName;
    peBuilder.crc = "AB";
    struct Row {
        const char* url;
        ArchiveFacts facts;
        const char* told;
    };
    for (const Row& row : {
             Row{"", {true, true, "AB"}, nullptr},
             Row{"http://host/x", {true, false, {}}, nullptr}, // downloaded
             Row{"", {true, false, {}}, "there is no address"},
             Row{"", {true, true, "CD"}, "differs"},
         }) {
        peBuilder.url = row.url;
        const std::string warning = PeBuilderWarning(peBuilder, row.facts);
        CHECK(warning.empty() == (row.told == nullptr));
        if (row.told)
            CHECK(warning.find(row.told) != std::string::npos);
    }
}
