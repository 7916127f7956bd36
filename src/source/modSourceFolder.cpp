#include "source/modSourceFolder.h"

#include "base/Failure.h"
#include "base/Problem.h"
#include "base/modFile.h"
#include "base/modText.h"
#include "catalogue/clsINI.h"

#include <array>
#include <utility>

namespace vesk {

namespace {

constexpr std::array<std::pair<const char*, const char*>, 3> kProducts = {
    {{"xp home", "0"}, {"xp professional", "1"}, {"server 2003", "2"}}};

constexpr std::array<std::pair<const char*, const char*>, 3> kServicePacks = {
    {{"sp1", "1"}, {"sp2", "2"}, {"sp3", "3"}}};

/// The folder that a path means, ending in "\"; empty for a path at which there is nothing.
std::string FolderOf(const std::string& chosenPath) {
    if (FolderExists(chosenPath))
        return WithTrailingBackslash(chosenPath);
    if (!FileExists(chosenPath))
        return {};
    const std::string parent = ParentOf(chosenPath);
    return parent.empty() ? parent : WithTrailingBackslash(parent);
}

} // namespace

SourceCheck CheckSourceFolder(const std::string& chosenPath, SourceState& state) {
    SourceCheck check;
    check.path = FolderOf(chosenPath);
    const std::string i386 = check.path + "I386\\";
    check.usable = !check.path.empty() && IsI386Folder(i386);
    if (check.path.empty())
        check.path = chosenPath;
    if (!check.usable)
        return check; // a source chosen earlier in the same run still counts
    state.valid = true;
    try {
        const SourceProduct product = ReadSourceProduct(i386);
        ApplySourceProduct(product, state);
        check.productLabel = product.productName + " " + UpperCase(product.servicePackTag);
    } catch (const Failure& failure) {
        check.unread = ReasonOf(failure);
    }
    return check;
}

bool IsI386Folder(const std::string& folder) {
    return FileExists(folder + "LAYOUT.INF") && FileExists(folder + "NTDLL.DLL") &&
           FileExists(folder + "SETUPLDR.BIN");
}

SourceProduct ReadSourceProduct(const std::string& i386Folder) {
    const clsINI layout(i386Folder + "LAYOUT.INF");
    RequireTextSize(layout.iniFileName); // a real one is below a megabyte
    return {layout.ReadStringValue("Strings", "productname"),
            ExtensionOf(layout.ReadStringValue("Strings", "spcdtagfilei"))};
}

void ApplySourceProduct(const SourceProduct& product, SourceState& state) {
    for (const auto& [tag, code] : kServicePacks) {
        if (EqualNoCase(product.servicePackTag, tag))
            state.servicePackCode = code;
    }
    for (const auto& [words, code] : kProducts) {
        if (FindNoCase(product.productName, words) != std::string::npos) {
            state.productCode = code;
            return;
        }
    }
}

} // namespace vesk
