#pragma once

#include "catalogue/Catalogue.h"
#include "source/SourceState.h"
#include "ui/wizard/clsComponentPage.h"

#include <string>

namespace vesk {

/// The page with the base components and the two folders of a build.
class pagBaseComponents : public clsComponentPage {
public:
    /// Catalogue and source state outlive the page, which keeps the catalogue's ticks and the
    /// source's codes up to date.
    pagBaseComponents(HWND wizard, Catalogue& catalogue, SourceState& source,
                      const std::string& programPath);

    /// @throws FolderRefused when the installation folder is typed with letters that a path of this
    /// program cannot have
    void RequireUsableLetters() const;

    /// The installation folder that is typed, as `TypedFolder` gives it.
    [[nodiscard]] std::string InstallFolder() const;

    /// The source folder that is typed, without blanks at its ends: behind one it would be a path
    /// from the current folder.
    [[nodiscard]] std::string SourceFolder() const;

    /// Takes over what was typed as source folder.
    void CommitSource();

    /// Shows the installation folder as it is meant.
    void ShowInstallFolder(const std::string& folder);

    /// Gives the keyboard to the installation folder, to be typed again.
    void FocusInstallFolder() const;

private:
    /// What the colour of the source folder's text means.
    enum class SourceColour { Plain, Usable, Unusable };

    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    INT_PTR OnCommand(int id, int notification);
    INT_PTR OnColour(HDC dc, HWND control) const;
    void OnCreated() override;
    void cmdProgPath_Click();
    void cmdWinPath_Click();
    void cmdScan_Click();
    void CheckSource(const std::string& chosen);
    void ShowSource(const std::string& folder, const std::string& product, SourceColour colour);

    Catalogue& catalogue_;
    SourceState& source_;
    std::string checkedSource_; ///< The text that the colour and the product label belong to.
    SourceColour sourceColour_ = SourceColour::Plain;
};

} // namespace vesk
