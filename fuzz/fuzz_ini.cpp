#include "Input.h"
#include "catalogue/modCatalogueCheck.h"
#include "catalogue/modCatalogueFaults.h"
#include "catalogue/modCatalogueText.h"
#include "catalogue/modIniText.h"
#include "catalogue/modNameList.h"

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
    Require(CatalogueFault(file).empty());
    const auto& keys = file.sections[2].keys;
    Require(keys.size() == 7 && keys[0].value == entry.name && keys[1].value == entry.zip);
    Require(ToBoolean(keys[3].value) == entry.enabled);
    CheckCatalogue(catalogue, {}, SectionNames(text));
}

} // namespace

/// The input as a catalogue's text, as a list of names, and as the fields of an entry.
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
    const std::vector<std::string> names = SplitNameList(text);
    Require(!names.empty() && names.back().empty());
    CheckWritten(text);
}
