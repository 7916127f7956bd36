#include "Input.h"
#include "archive/modArchiveName.h"
#include "base/modText.h"
#include "catalogue/modCatalogueCheck.h"
#include "catalogue/modCatalogueFaults.h"
#include "catalogue/modCatalogueText.h"
#include "catalogue/modIniText.h"
#include "catalogue/modNameList.h"
#include "catalogue/modSha256Text.h"

#include <utility>

using namespace vesk;

namespace {

/// A field as the file can hold it: printable, without what the reader takes away.
std::string Field(std::string_view text) {
    std::string field;
    for (const char c : text.substr(0, 40))
        if (c > ' ' && c < 0x7F && c != '"' && c != '\'')
            field += c;
    return field;
}

/// What the editor writes is what the reader finds, field by field.
void CheckWritten(const std::string& text) {
    Catalogue catalogue;
    catalogue.installFolder = "Tree";
    catalogue.installPathFlag = "0";
    CatalogueEntry entry;
    entry.name = Field(text);
    entry.zip = Field(std::string_view(text).substr(text.size() / 2));
    entry.enabled = text.size() % 2 == 0;
    catalogue.baseComponents = {entry, entry};
    entry.cat = "100";
    catalogue.plugins = {entry};
    catalogue.categories = {{"100_tools", "100", "Tools"}};
    const IniText file = ParseIni(CatalogueText(catalogue, "1/1/2006"));
    Require(file.sections.size() == 4 && file.lost.empty());
    Require(CatalogueFault(file).empty() && CatalogueSurplus(file).empty());
    const auto& keys = file.sections[2].keys;
    Require(keys.size() == 7 && keys[0].value == entry.name && keys[1].value == entry.zip);
    Require(ToBoolean(keys[3].value) == entry.enabled);
    CheckCatalogue(catalogue, {}, SectionNames(text));
}

/// A digest that is written into a list is the one that it has then, and no other line is touched.
void CheckDigest(const std::string& text, const std::string& name) {
    const std::string digest(64, 'd');
    const Sha256Text before = ParseSha256Text(text);
    Sha256Text after = ParseSha256Text(WithSha256(text, name, digest));
    Require(std::exchange(after.digests[LowerCase(name)], {}) == digest);
    for (const auto& [other, value] : before.digests)
        Require(after.digests[other] == value || other == LowerCase(name));
    Require(after.faults.size() <= before.faults.size());
}

} // namespace

/// The input as a catalogue's text, as lists of names and of digests, and as the fields of an
/// entry.
void CheckInput(const std::string& text) {
    const IniText file = ParseIni(text);
    std::size_t length = 0;
    for (const IniSection& section : file.sections) {
        length += section.name.size() + 1;
        std::size_t keys = 0;
        for (const IniKey& key : section.keys) {
            Require(key.name.find_first_of("\n=") == std::string::npos);
            Require(key.value.find('\n') == std::string::npos);
            keys += key.name.size() + 1;
        }
        Require(KeyListLength(section) == keys);
    }
    Require(SectionListLength(file.sections) == length);
    CatalogueFault(file);
    CatalogueSurplus(file);
    const std::vector<std::string> names = SplitNameList(text);
    Require(!names.empty() && names.back().empty());
    CheckWritten(text);
    if (const std::string name = "A" + Field(text); IsPlainFileName(name))
        CheckDigest(text, name);
    for (const auto& [known, digest] : ParseSha256Text(text).digests)
        CheckDigest(text, known);
}
