#include "EditorDriver.h"

#include <commctrl.h>

#include <doctest/doctest.h>

using namespace vesk;
using namespace vesk::test;

namespace {

/// The categories dialog of an editor.
class CategoriesDialog {
public:
    explicit CategoriesDialog(const Editor& editor) {
        editor.Click(IDC_CMD_CATEGORIES);
        window = editor.AwaitDialog("Categories");
    }
    [[nodiscard]] HWND Control(int id) const { return GetDlgItem(window, id); }
    void Press(int button) const { SendMessageA(Control(button), BM_CLICK, 0, 0); }
    void Type(int field, const std::string& text) const {
        SendMessageA(Control(field), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    void Select(int line) const {
        SendMessageA(Control(IDC_LST_CATEGORIES), WM_KEYDOWN, VK_HOME, 1);
        for (int i = 0; i < line; ++i)
            SendMessageA(Control(IDC_LST_CATEGORIES), WM_KEYDOWN, VK_DOWN, 1);
    }
    [[nodiscard]] LRESULT Count() const {
        return SendMessageA(Control(IDC_LST_CATEGORIES), LVM_GETITEMCOUNT, 0, 0);
    }

    HWND window = nullptr;
};

} // namespace

TEST_CASE("categories are edited, and plug-ins follow a key that became another") {
    ProgramFolder program;
    program.catalogue.categories.push_back({"200_some_apps", "200", ""});
    program.catalogue.plugins[1].cat = "200";
    program.Save();
    const Editor editor(program);
    {
        const CategoriesDialog dialog(editor);
        CHECK(dialog.Count() == 2);
        CHECK(IsWindowEnabled(dialog.Control(IDC_CMD_CATEGORY_UP)) == FALSE);
        dialog.Type(IDC_TXT_CATEGORY_KEY, "dropped");
        WizardDriver::Answer(dialog.window, IDCANCEL);
        CHECK(editor.Text(IDC_LBL_STATE).empty());
    }
    const CategoriesDialog dialog(editor);
    dialog.Type(IDC_TXT_CATEGORY_KEY, "110");
    dialog.Press(IDC_CMD_CATEGORY_DOWN);
    dialog.Press(IDC_CMD_CATEGORY_ADD);
    dialog.Type(IDC_TXT_CATEGORY_KEY, "200");
    dialog.Type(IDC_TXT_CATEGORY_FOLDER, "300_new_ones");
    dialog.Press(IDC_CHK_SHOW_CATEGORIES);
    PostMessageA(dialog.Control(IDOK), BM_CLICK, 0, 0);
    editor.AnswerBox("Category",
                     "The category '200': there is a category with the key \"200\" before it.",
                     IDOK);
    dialog.Type(IDC_TXT_CATEGORY_KEY, "300");
    WizardDriver::Answer(dialog.window, IDOK);
    REQUIRE(editor.Says("There are unsaved edits."));
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN + kCategory) ==
          Names{"200 - Some Apps", "110 - 100 Tools", "300 - New Ones"});
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN + kCategory) == 1);
    editor.Click(IDC_CMD_APPLY);
    REQUIRE(editor.Says("Saved."));
    Catalogue expected = program.catalogue;
    expected.categories = {
        {"200_some_apps", "200", ""}, {"100_tools", "110", ""}, {"300_new_ones", "300", ""}};
    expected.showCategories = true;
    expected.plugins[0].cat = "110";
    expected.plugins[2].cat = "110";
    CHECK(SavedText(program) == TextOfCatalogue(expected));

    // A category that plug-ins are in does not go without a question.
    const CategoriesDialog again(editor);
    again.Select(1);
    PostMessageA(again.Control(IDC_CMD_CATEGORY_REMOVE), BM_CLICK, 0, 0);
    const HWND box = editor.AwaitDialog("Category");
    CHECK(WizardDriver::BoxText(box).find("holds 2 plug-ins") != std::string::npos);
    WizardDriver::Answer(box, IDNO);
    CHECK(again.Count() == 3);
    WizardDriver::Answer(again.window, IDCANCEL);
}
