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
enum : int { kRemoveBase = IDC_CMD_BUTTONS + 1, kBrowseBase };
enum : int { kAddPlugin = IDC_CMD_BUTTONS + 3, kRemovePlugin, kBrowsePlugin };
enum : int { kUpBase = IDC_CMD_BUTTONS + 6, kDownBase, kUpPlugin, kDownPlugin };

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
