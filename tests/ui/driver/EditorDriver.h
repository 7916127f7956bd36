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
enum : int { kFileName = 1, kAddress = 4, kChecksum = 5 };
enum : int { kEnabled = 1, kLocked, kCategory };
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
        : WizardDriver(program.Wizard(), "-SETUP further words", "Plugin Setup"),
          program_(program) {}

    /// Waits for what a selector offers.
    void AwaitOffer(int selector, const Names& names) const {
        AWAIT(*this, Items(selector) == names);
    }

    /// Waits for the sentence beside the actions.
    void AwaitState(const std::string& sentence) const {
        Await("the state " + sentence, [&] { return Text(IDC_LBL_STATE) == sentence; });
    }
    void Apply() const {
        Click(IDC_CMD_APPLY);
        AwaitState("Saved.");
    }
    void Exit() const {
        Click(IDCANCEL);
        CHECK(AwaitEnd() == 0);
    }

    /// Waits for a message box, checks its text and answers it.
    void CheckBox(const std::string& title, const std::string& text, int button) const {
        CHECK(AnswerBox(title, button) == text);
    }

    /// Whether the file says what a catalogue would be saved as. What stands before its first
    /// section holds the date.
    void CheckSaved(const Catalogue& catalogue) const {
        const auto sections = [](const std::string& text) {
            return text.substr(std::min(text.find('['), text.size()));
        };
        CHECK(sections(ReadWholeFile(program_.Path() + kCatalogueFileName)) ==
              sections(CatalogueText(catalogue, "")));
    }

private:
    const ProgramFolder& program_;
};

} // namespace vesk::test
