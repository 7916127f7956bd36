#include "catalogue/modCatalogueText.h"

#include "base/modText.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

namespace vesk {

namespace {

/// Sections and keys as the profile functions would lay them out, one write after the other: a new
/// key comes last in its section, one that is there already gets the new value in its place.
class IniText {
public:
    void Put(const std::string& section, const std::string& key, const std::string& value) {
        Keys& keys = FindOrAdd(sections_, section);
        FindOrAdd(keys, key) = value;
    }

    [[nodiscard]] std::string Text() const {
        std::string text;
        for (const auto& [section, keys] : sections_) {
            text.append("[").append(section).append("]\r\n");
            for (const auto& [key, value] : keys)
                text.append(key).append("=").append(value).append("\r\n");
        }
        return text;
    }

private:
    using Keys = std::vector<std::pair<std::string, std::string>>;

    template <class Content>
    static Content& FindOrAdd(std::vector<std::pair<std::string, Content>>& list,
                              const std::string& name) {
        const auto found = std::ranges::find_if(
            list, [&](const auto& item) { return EqualNoCase(item.first, name); });
        return found != list.end() ? found->second : list.emplace_back(name, Content()).second;
    }

    std::vector<std::pair<std::string, Keys>> sections_;
};

const char* Flag(bool value) {
    return value ? "1" : "0";
}

/// The blank keeps a key whose field is empty; readers get the value back without it.
std::string Padded(const std::string& value) {
    return value + " ";
}

void PutEntries(IniText& ini, const std::string& section,
                const std::vector<CatalogueEntry>& entries, bool withCategory) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const CatalogueEntry& entry = entries[i];
        const std::string index = std::to_string(i);
        ini.Put(section, "Name" + index, Padded(entry.name));
        ini.Put(section, "Zip" + index, Padded(entry.zip));
        if (withCategory)
            ini.Put(section, "Cat" + index, Padded(entry.cat));
        ini.Put(section, "Enabled" + index, Flag(entry.enabled));
        ini.Put(section, "Lock" + index, Flag(entry.lock));
        ini.Put(section, "Url" + index, Padded(entry.url));
        ini.Put(section, "CRC" + index, Padded(entry.crc));
    }
}

} // namespace

std::string CatalogueText(const Catalogue& catalogue, const std::string& date) {
    IniText ini;
    ini.Put("Install", "Folder", catalogue.installFolder);
    ini.Put("Install", "Path", catalogue.installPathFlag);
    PutEntries(ini, "Base", catalogue.baseComponents, false);
    PutEntries(ini, "Plugin", catalogue.plugins, true);
    ini.Put("Categories", "ShowCategories", catalogue.showCategories ? "-1" : "0");
    for (const CategoryRecord& category : catalogue.categories)
        ini.Put("Categories", category.key, category.value);
    return "; !!!! DO NOT EDIT MANUALLY !!!! use veskbuilder.exe -setup\r\n"
           "; Configuration file for Vesk Builder\r\n"
           "; File: veskbuilder.ini\r\n"
           "; Version: 0.07\r\n"
           "; Date: " +
           date + "\r\n\r\n" + ini.Text();
}

std::vector<std::string> SectionNames(std::string_view iniText) {
    std::vector<std::string> names;
    for (const std::string& piece : Split(iniText, '\n')) {
        const std::string line = TrimBlanks(piece);
        if (line.starts_with('['))
            names.push_back(TrimBlanks(line.substr(1, line.find(']') - 1)));
    }
    return names;
}

std::optional<bool> ToBoolean(std::string_view text) {
    const std::string word = LowerCase(TrimBlanks(text));
    if (word == "true")
        return true;
    if (word == "false")
        return false;
    if (word.find_first_not_of("0123456789+-.e") != std::string::npos)
        return std::nullopt; // strtod also takes "inf", "nan" and hexadecimal digits
    char* end = nullptr;
    const double number = std::strtod(word.c_str(), &end);
    if (word.empty() || end != word.c_str() + word.size())
        return std::nullopt;
    return number != 0;
}

} // namespace vesk
