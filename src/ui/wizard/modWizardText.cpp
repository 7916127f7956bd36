#include "ui/wizard/modWizardText.h"

#include "base/modText.h"
#include "net/modDownloadText.h"

#include <cctype>
#include <vector>

namespace vesk {

namespace {

constexpr const char* kLineEnd = "\r\n";

void AppendEnabledNames(std::string& text, const std::vector<CatalogueEntry>& entries) {
    for (const CatalogueEntry& entry : entries) {
        if (entry.enabled)
            text += "   " + entry.name + kLineEnd;
    }
}

} // namespace

std::string WelcomeText(const std::string& versionText, const std::string& legalNotice,
                        const std::string& storedText) {
    return std::string("Vesk Builder for Windows NT/2000/XP/Vista") + kLineEnd + versionText + " " +
           legalNotice + kLineEnd + storedText;
}

std::string SummaryText(const SummaryInputs& inputs) {
    std::string text = std::string("Base Components:") + kLineEnd;
    AppendEnabledNames(text, inputs.catalogue.baseComponents);
    text += std::string(kLineEnd) + "Plugins:" + kLineEnd;
    AppendEnabledNames(text, inputs.catalogue.plugins);
    text += kLineEnd;
    text += "Installation path: " + inputs.installFolder + kLineEnd;
    text += "Source path: " + (inputs.sourceValid ? inputs.sourceFolder : "Invalid") + kLineEnd;
    text += kLineEnd;
    text += "Press Next to continue with the installation.";
    return text;
}

std::string PeBuilderWarning(const CatalogueEntry& peBuilder, const ArchiveFacts& facts) {
    constexpr EntryPlace kFirst{EntryList::BaseComponents, 0};
    const ArchiveState state = JudgeArchive(peBuilder, kFirst, facts);
    if (ComesIntoBuild(state))
        return {};
    return "The build cannot be used without PE Builder. " +
           ArchiveSentence(peBuilder, kFirst, state);
}

std::string StateText(const CatalogueEntry& entry, const EntryPlace& place, ArchiveState state) {
    std::string text = ArchiveWords(entry, place, state);
    text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    return entry.lock ? text + ", locked" : text;
}

std::string EntryTip(const CatalogueEntry& entry, const EntryPlace& place, ArchiveState state) {
    std::string text = "Archive: " + entry.zip;
    for (const std::string& address : Split(entry.url, ','))
        text += kLineEnd + ("Address: " + TrimBlanks(address));
    text += kLineEnd + ("CRC-32: " + (entry.crc.empty() ? "not given" : entry.crc));
    text += kLineEnd + ArchiveSentence(entry, place, state);
    if (!entry.enabled && place.list == EntryList::BaseComponents)
        text += kLineEnd + std::string("A build installs every base component, ticked or not.");
    if (entry.lock)
        text += kLineEnd + std::string("This entry is locked: its tick cannot be changed.");
    return text;
}

std::string InBuildText(const CatalogueEntry& entry, EntryList list, ArchiveState state) {
    const bool included = entry.enabled || list == EntryList::BaseComponents;
    if (included && !ComesIntoBuild(state))
        return "no: its archive is left out, see the state above";
    if (list == EntryList::BaseComponents && !entry.enabled)
        return "yes: a build installs every base component, ticked or not";
    if (entry.lock)
        return entry.enabled ? "yes, always (locked)" : "no, never (locked)";
    return entry.enabled ? "yes" : "no";
}

std::string RateText(double bytesPerSecond, std::int64_t secondsLeft) {
    if (bytesPerSecond < 1)
        return {};
    std::string rate = ByteAmount(bytesPerSecond) + "/s";
    if (secondsLeft < 0)
        return rate;
    constexpr std::int64_t kMinute = 60;
    const bool minutes = secondsLeft >= 2 * kMinute;
    const std::int64_t count = minutes ? (secondsLeft + kMinute / 2) / kMinute : secondsLeft;
    return rate + ", " + std::to_string(count) + (minutes ? " minute" : " second") +
           (count == 1 ? " left" : "s left");
}

std::string DownloadDetail(const DownloadProgress& progress) {
    std::string wait = WaitText(progress);
    if (wait.empty())
        return RateText(progress.bytesPerSecond, progress.secondsLeft);
    wait[0] = UpperCase(wait.substr(0, 1))[0];
    return wait;
}

std::string CategoryTitle(const Catalogue& catalogue, const CatalogueEntry& entry) {
    const CategoryRecord* const category = FindCategory(catalogue, entry.cat);
    return category == nullptr ? entry.cat : category->caption;
}

} // namespace vesk
