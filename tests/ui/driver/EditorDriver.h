#pragma once

#include "ProgramFolder.h"
#include "WizardDriver.h"
#include "catalogue/modCatalogueText.h"
#include "ui/resources/ids.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <string>
#include <vector>

/// What the tests of the catalogue editor do again and again.
namespace vesk::test {

using Names = std::vector<std::string>;

// Indices in the form's control arrays.
inline constexpr int kFileName = 1;
inline constexpr int kAddress = 4;
inline constexpr int kChecksum = 5;
inline constexpr int kEnabled = 1;
inline constexpr int kLocked = 2;
inline constexpr int kCategory = 3;
inline constexpr int kAddBase = IDC_CMD_BUTTONS;
inline constexpr int kRemoveBase = IDC_CMD_BUTTONS + 1;
inline constexpr int kBrowseBase = IDC_CMD_BUTTONS + 2;
inline constexpr int kAddPlugin = IDC_CMD_BUTTONS + 3;
inline constexpr int kRemovePlugin = IDC_CMD_BUTTONS + 4;
inline constexpr int kBrowsePlugin = IDC_CMD_BUTTONS + 5;
inline constexpr int kUpBase = IDC_CMD_BUTTONS + 6;
inline constexpr int kDownBase = IDC_CMD_BUTTONS + 7;
inline constexpr int kUpPlugin = IDC_CMD_BUTTONS + 8;
inline constexpr int kDownPlugin = IDC_CMD_BUTTONS + 9;

class Editor : public WizardDriver {
public:
    explicit Editor(const ProgramFolder& program)
        : WizardDriver(program.Wizard(), "-SETUP further words", "Plugin Setup") {}

    /// Waits for what a selector offers.
    [[nodiscard]] bool Offers(int selector, const Names& names) const {
        return WaitUntil([&] { return Items(selector) == names; }, 5000);
    }

    /// Waits for the sentence beside the actions.
    [[nodiscard]] bool Says(const std::string& sentence) const {
        return WaitUntil([&] { return Text(IDC_LBL_STATE) == sentence; }, 5000);
    }

    [[nodiscard]] bool HasFocus(int id) const {
        return WaitUntil([&] { return Focus() == Control(id); }, 5000);
    }
    void FocusOn(int id) const {
        SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(id)), TRUE);
        REQUIRE(HasFocus(id));
    }
    /// Presses a key where the keyboard is.
    void Press(WPARAM key) const { PostMessageA(Focus(), WM_KEYDOWN, key, 1); }

    /// Waits for a message box, checks its text and answers it.
    void AnswerBox(const std::string& title, const std::string& text, int button) const {
        const HWND box = AwaitDialog(title);
        CHECK(BoxText(box) == text);
        Answer(box, button);
    }

private:
    [[nodiscard]] HWND Focus() const {
        GUITHREADINFO info{};
        info.cbSize = sizeof info;
        GetGUIThreadInfo(GetWindowThreadProcessId(Window(), nullptr), &info);
        return info.hwndFocus;
    }
};

/// The catalogue file from its first section on; what stands before it holds the date.
inline std::string SavedText(const ProgramFolder& program) {
    const std::string text = ReadWholeFile(program.Path() + kCatalogueFileName);
    return text.substr(std::min(text.find('['), text.size()));
}

inline std::string TextOfCatalogue(const Catalogue& catalogue) {
    const std::string text = CatalogueText(catalogue, "");
    return text.substr(text.find('['));
}

} // namespace vesk::test
