#include "catalogue/modCategoryCheck.h"

#include "archive/modMemberName.h"
#include "base/CodePage.h"
#include "base/modText.h"
#include "catalogue/modCatalogueText.h"
#include "catalogue/modIniText.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace vesk {

namespace {

/// Keys are names in an INI file.
std::string KeyFault(const std::string& key) {
    if (TrimBlanks(key).empty())
        return "it has no key";
    if (key != TrimBlanks(key))
        return "its key begins or ends with a blank, which the file does not keep";
    if (EqualNoCase(key, kShowCategoriesKey))
        return "the file has another use for the key " + Quoted(key);
    if (key.front() == '[' || key.front() == ';' || key.find('=') != std::string::npos)
        return R"(its key must not hold "=" or begin with "[" or ";")";
    if (std::ranges::any_of(key, [](char c) { return static_cast<unsigned char>(c) < ' '; }))
        return "its key holds a control character";
    return key.size() > kLongestIniValue
               ? "its key is longer than " + std::to_string(kLongestIniValue) + " characters"
               : std::string();
}

/// The value names one folder below the plug-in folder.
std::string FolderFault(const std::string& value) {
    if (value.empty())
        return "it has no folder";
    if (value != TrimBlanks(value) || IsInQuotes(value))
        return "blanks or quotes around its folder's name would be lost: " + Quoted(value);
    if (WithoutTrailBytes(value).find_first_of("\\/") != std::string::npos ||
        !PathInside("", value))
        return Quoted(value) + " is not a valid folder name";
    return value.size() > kLongestIniValue ? "its folder's name is longer than " +
                                                 std::to_string(kLongestIniValue) + " characters"
                                           : std::string();
}

std::string FormFault(const CategoryRecord& category) {
    const std::string keyFault = KeyFault(category.key);
    return keyFault.empty() ? FolderFault(category.value) : keyFault;
}

} // namespace

std::vector<std::string> CategoryFaults(const std::vector<CategoryRecord>& categories) {
    std::vector<std::string> faults;
    std::map<std::string, std::string> keys;    // in lower case, to the first one as it is written
    std::map<std::string, std::string> folders; // in lower case, to the key of the first one
    for (const CategoryRecord& category : categories) {
        const auto [key, keyIsNew] = keys.try_emplace(LowerCase(category.key), category.key);
        const auto [folder, folderIsNew] =
            folders.try_emplace(LowerCase(category.value), category.key);
        std::string fault = FormFault(category);
        if (fault.empty() && !keyIsNew)
            fault = "there is a category with the key " + Quoted(key->second) + " before it";
        if (fault.empty() && !folderIsNew)
            fault = "the category " + Quoted(folder->second) + " has the same folder " +
                    Quoted(category.value);
        faults.push_back(std::move(fault));
    }
    return faults;
}

} // namespace vesk
