#include "catalogue/modCatalogueText.h"

#include "base/modText.h"

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace vesk {

namespace {

/// One section as the profile functions would lay it out, one write after the other: a new key
/// comes last, one that is there already gets the new value in its place.
class SectionText {
public:
    void Put(const std::string& key, const std::string& value) {
        const auto [found, isNew] = places_.try_emplace(LowerCase(key), keys_.size());
        if (isNew)
            keys_.emplace_back(key, value);
        else
            keys_[found->second].second = value;
    }

    /// Nothing for a section without keys: no write has made it.
    [[nodiscard]] std::string Text(const std::string& name) const {
        std::string text = keys_.empty() ? "" : "[" + name + "]\r\n";
        for (const auto& [key, value] : keys_)
            text.append(key).append("=").append(value).append("\r\n");
        return text;
    }

private:
    std::vector<std::pair<std::string, std::string>> keys_;
    std::map<std::string, std::size_t> places_; ///< By the key in lower case.
};

const char* Flag(bool value) {
    return value ? "1" : "0";
}

/// The blank keeps a key whose field is empty; readers get the value back without it.
std::string Padded(const std::string& value) {
    return value + " ";
}

SectionText EntriesText(const std::vector<CatalogueEntry>& entries, bool withCategory) {
    SectionText section;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const CatalogueEntry& entry = entries[i];
        const std::string index = std::to_string(i);
        section.Put("Name" + index, Padded(entry.name));
        section.Put("Zip" + index, Padded(entry.zip));
        if (withCategory)
            section.Put("Cat" + index, Padded(entry.cat));
        section.Put("Enabled" + index, Flag(entry.enabled));
        section.Put("Lock" + index, Flag(entry.lock));
        section.Put("Url" + index, Padded(entry.url));
        section.Put("CRC" + index, Padded(entry.crc));
    }
    return section;
}

} // namespace

std::string CatalogueText(const Catalogue& catalogue, const std::string& date) {
    SectionText install;
    install.Put("Folder", catalogue.installFolder);
    install.Put("Path", catalogue.installPathFlag);
    SectionText categories;
    categories.Put(kShowCategoriesKey, catalogue.showCategories ? "-1" : "0");
    for (const CategoryRecord& category : catalogue.categories)
        categories.Put(category.key, category.value);
    return "; !!!! DO NOT EDIT MANUALLY !!!! use veskbuilder.exe -setup\r\n"
           "; Configuration file for Vesk Builder\r\n"
           "; File: veskbuilder.ini\r\n"
           "; Version: 0.07\r\n"
           "; Date: " +
           date + "\r\n\r\n" + install.Text("Install") +
           EntriesText(catalogue.baseComponents, false).Text("Base") +
           EntriesText(catalogue.plugins, true).Text("Plugin") + categories.Text("Categories");
}

} // namespace vesk
