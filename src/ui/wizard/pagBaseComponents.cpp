#include "ui/wizard/pagBaseComponents.h"

#include "base/modFile.h"
#include "base/modSpecialFolder.h"
#include "base/modText.h"
#include "build/clsInstallFolder.h"
#include "source/modSourceFolder.h"
#include "ui/kit/frmBrowse.h"
#include "ui/kit/modBand.h"
#include "ui/kit/modContrast.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"
#include "ui/wizard/frmSelOS.h"
#include "ui/wizard/modWizardText.h"

namespace vesk {

namespace {

constexpr COLORREF kGreen = RGB(0, 130, 0);
constexpr COLORREF kDarkRed = RGB(140, 0, 0);

/// The folder itself or the nearest one above it that exists: where a browse dialog can start.
std::string NearestFolder(std::string folder) {
    while (!folder.empty() && !FolderExists(folder))
        folder = ParentOf(folder);
    return folder;
}

} // namespace

pagBaseComponents::pagBaseComponents(HWND wizard, Catalogue& catalogue, SourceState& source,
                                     const std::string& programPath)
    : clsComponentPage(clsComponentList::Kind::BaseComponents, catalogue, programPath, IDC_LST_BASE,
                       IDC_CMD_BASE_DETAILS),
      catalogue_(catalogue),
      source_(source) {
    Create(wizard, IDD_PAGE_BASE);
}

void pagBaseComponents::OnCreated() {
    // Without a folder for programs there is no root, and "\VeskLive" would mean the current drive.
    if (!catalogue_.installRoot.empty())
        SetText(Control(IDC_TXT_PROG_PATH),
                TypedFolder(catalogue_.installRoot + "\\" + catalogue_.installFolder));
    Follow(clsLayout::kGrowX | clsLayout::kGrowY, {IDC_PIC_FRAME1});
    Follow(clsLayout::kMoveX, {IDC_CMD_BASE_DETAILS});
    Follow(clsLayout::kMoveY, {IDC_LBL_PROG_PATH, IDC_LBL_WIN_PATH});
    Follow(clsLayout::kGrowX | clsLayout::kMoveY,
           {IDC_PIC_FRAME2, IDC_TXT_PROG_PATH, IDC_TXT_WIN_PATH, IDC_LBL_WIN_PRODUCT});
    Follow(clsLayout::kMoveX | clsLayout::kMoveY,
           {IDC_CMD_PROG_PATH, IDC_CMD_WIN_PATH, IDC_CMD_SCAN});
}

void pagBaseComponents::RequireUsableLetters() const {
    if (HoldsForeignLetters(Control(IDC_TXT_PROG_PATH)))
        throw FolderRefused(
            "The installation folder's name has a letter that the system's code page "
            "lacks. Choose a name without it: " +
            InstallFolder());
}

std::string pagBaseComponents::InstallFolder() const {
    return TypedFolder(TextOf(Control(IDC_TXT_PROG_PATH)));
}

std::string pagBaseComponents::SourceFolder() const {
    return TrimBlanks(TextOf(Control(IDC_TXT_WIN_PATH)));
}

void pagBaseComponents::CommitSource() {
    const std::string typed = SourceFolder();
    if (typed == checkedSource_)
        return;
    if (typed.empty())
        ShowSource(typed, "", SourceColour::Plain);
    else
        CheckSource(typed);
}

void pagBaseComponents::ShowInstallFolder(const std::string& folder) {
    SetText(Control(IDC_TXT_PROG_PATH), folder);
}

void pagBaseComponents::FocusInstallFolder() const {
    SendMessageA(GetAncestor(Window(), GA_ROOT), WM_NEXTDLGCTL,
                 reinterpret_cast<WPARAM>(Control(IDC_TXT_PROG_PATH)), TRUE);
}

void pagBaseComponents::CheckSource(const std::string& chosen) {
    const SourceCheck check = CheckSourceFolder(chosen, source_);
    const std::string product = check.unread.empty()
                                    ? check.productLabel
                                    : "Product and service pack not read: " + check.unread;
    ShowSource(check.path, product, check.usable ? SourceColour::Usable : SourceColour::Unusable);
}

void pagBaseComponents::ShowSource(const std::string& folder, const std::string& product,
                                   SourceColour colour) {
    checkedSource_ = folder;
    sourceColour_ = colour;
    SetText(Control(IDC_TXT_WIN_PATH), folder);
    SetText(Control(IDC_LBL_WIN_PRODUCT), product);
    InvalidateRect(Control(IDC_TXT_WIN_PATH), nullptr, TRUE);
}

void pagBaseComponents::cmdProgPath_Click() {
    const std::string folder =
        frmBrowse(GetAncestor(Window(), GA_ROOT))
            .ChooseFolder("Choose the folder to build into", NearestFolder(InstallFolder()));
    if (!folder.empty())
        ShowInstallFolder(TypedFolder(folder));
}

void pagBaseComponents::cmdWinPath_Click() {
    const std::string shown = SourceFolder();
    const std::string start =
        shown.empty() ? SpecialFolderPath(SpecialFolder::ProgramFiles) : shown;
    const std::string chosen =
        frmBrowse(GetAncestor(Window(), GA_ROOT))
            .ChooseFolder("Choose the folder of the Windows CD that holds I386",
                          NearestFolder(start));
    if (!chosen.empty())
        CheckSource(chosen);
}

void pagBaseComponents::cmdScan_Click() {
    const HWND wizard = GetAncestor(Window(), GA_ROOT);
    if (ShowMessage(wizard, "Search for Windows installation files ?\r\n(can take some time)",
                    "File Search", MB_YESNO | MB_ICONINFORMATION) == IDNO)
        return;
    const auto found = frmSelOS(source_).Choose(wizard);
    if (!found)
        return;
    ApplySourceProduct({found->productName, found->servicePackTag}, source_);
    ShowSource(found->rootFolder, found->productName + " " + found->servicePackTag,
               SourceColour::Usable);
}

INT_PTR pagBaseComponents::OnCommand(int id, int notification) {
    if (notification == EN_KILLFOCUS && id == IDC_TXT_WIN_PATH)
        CommitSource();
    if (notification != BN_CLICKED)
        return TRUE;
    switch (id) {
    case IDC_CMD_BASE_DETAILS:
        OpenSelected();
        return TRUE;
    case IDC_CMD_PROG_PATH:
        cmdProgPath_Click();
        return TRUE;
    case IDC_CMD_WIN_PATH:
        cmdWinPath_Click();
        return TRUE;
    case IDC_CMD_SCAN:
        cmdScan_Click();
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR pagBaseComponents::OnColour(HDC dc, HWND control) const {
    if (control != Control(IDC_TXT_WIN_PATH) || sourceColour_ == SourceColour::Plain)
        return FALSE;
    const INT_PTR brush = OnWhite(dc);
    SetTextColor(dc, ReadableColour(sourceColour_ == SourceColour::Usable ? kGreen : kDarkRed,
                                    GetSysColor(COLOR_WINDOWTEXT), GetSysColor(COLOR_WINDOW)));
    return brush;
}

INT_PTR pagBaseComponents::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_COMMAND:
        if (LOWORD(wparam) != IDC_TXT_PROG_PATH && LOWORD(wparam) != IDC_TXT_WIN_PATH)
            FollowFocus(reinterpret_cast<HWND>(lparam), HIWORD(wparam), IDC_CMD_NEXT);
        return OnCommand(LOWORD(wparam), HIWORD(wparam));
    case WM_CTLCOLOREDIT:
        return OnColour(reinterpret_cast<HDC>(wparam), reinterpret_cast<HWND>(lparam));
    default:
        return clsComponentPage::Handle(message, wparam, lparam);
    }
}

} // namespace vesk
