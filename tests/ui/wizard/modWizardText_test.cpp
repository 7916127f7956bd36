#include "ui/wizard/modWizardText.h"

#include "ExpectedText.h"

using namespace vesk;

TEST_CASE("what the wizard's pages say of a catalogue and its archives") {
    Catalogue catalogue;
    catalogue.baseComponents = {{"PE", kFirstArchiveName, "", true, false, "", "AB"},
                                {"Old", "", "", false, false, "", ""}};
    catalogue.plugins = {
        {"One", "one.zip", "100", true, true, "http://a/one.zip, http://b/one.zip", "12AB"},
        {"Two", "two.zip", "", false, false, "", ""}};
    std::string text;
    const auto tell = [&](const std::string& said) { text += "= " + said + "\n"; };
    tell(SummaryText({catalogue, "C:\\Tree", "D:\\", true}));
    tell(SummaryText({catalogue, "C:\\Tree", "D:\\", false}));

    const auto tellEntry = [&](bool enabled, const EntryPlace& place, ArchiveState state) {
        CatalogueEntry entry = catalogue.plugins[0];
        entry.lock = entry.enabled = enabled;
        tell(StateText(entry, place, state) + "; in the build: " +
             InBuildText(entry, place.list, state) + "\n" + EntryTip(entry, place, state));
    };
    const EntryPlace plugin{EntryList::Plugins, 0};
    const EntryPlace base{EntryList::BaseComponents, 1};
    for (const bool enabled : {true, false}) {
        for (const auto state : {ArchiveState::Good, ArchiveState::ToDownload})
            tellEntry(enabled, plugin, state);
        // A base component comes into the build whatever its tick.
        for (const auto state : {ArchiveState::Good, ArchiveState::Missing})
            tellEntry(enabled, base, state);
    }

    // Beforehand, when PE Builder will not be in what is built.
    CatalogueEntry peBuilder = catalogue.baseComponents[0];
    const ArchiveFacts missing{true, false, {}};
    tell(PeBuilderWarning(peBuilder, {true, true, "AB"}));
    tell(PeBuilderWarning(peBuilder, missing));
    tell(PeBuilderWarning(peBuilder, {true, true, "CD"}));
    peBuilder.url = "http://host/x";
    tell(PeBuilderWarning(peBuilder, missing)); // downloaded

    for (const auto& [rate, left] :
         {std::pair{0, 5}, {1, 0}, {1, 120}, {1500, -1}, {2500000, 1}, {50000, 119}, {50000, 150}})
        tell(RateText(rate, left));
    DownloadProgress progress;
    progress.bytesPerSecond = 5e7;
    tell(DownloadDetail(progress));
    progress.silence = 30;
    tell(DownloadDetail(progress));
    test::CheckExpected("wizard_texts", ReplaceAll(text, "\r", ""));
}
