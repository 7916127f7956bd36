#include "EditorDriver.h"
#include "Growth.h"

#include "ExpectedText.h"

using namespace vesk;
using namespace vesk::test;

TEST_CASE("categories are edited, and plug-ins follow a key that became another") {
    ProgramFolder program;
    program.catalogue.categories.push_back({"200_some_apps", "200", ""});
    program.catalogue.plugins[1].cat = "200";
    program.Save();
    const Editor editor(program);
    HWND dialog = nullptr;
    const auto open = [&] {
        editor.Click(IDC_CMD_CATEGORIES);
        dialog = editor.AwaitDialog("Categories");
    };
    const auto press = [&](int button) { SendDlgItemMessageA(dialog, button, BM_CLICK, 0, 0); };
    const auto count = [&] {
        return SendDlgItemMessageA(dialog, IDC_LST_CATEGORIES, LVM_GETITEMCOUNT, 0, 0);
    };
    open();
    editor.CheckShows(dialog, "categories");
    CheckGrows(dialog,
               {{IDC_LST_CATEGORIES, {0, 0, 200, 100}},
                {IDC_CMD_CATEGORY_ADD, {200, 0, 200, 0}},
                {IDC_TXT_CATEGORY_KEY, {0, 100, 0, 100}},
                {IDC_TXT_CATEGORY_FOLDER, {0, 100, 200, 100}},
                {IDOK, {200, 100, 200, 100}},
                {IDCANCEL, {200, 100, 200, 100}}},
               [] {});
    editor.PressWithControl('C');
    editor.AwaitClipboard("100\t100_tools\tTools\r\n");
    CHECK(SendMessageA(dialog, WM_QUERYENDSESSION, 0, 0) != 0);
    TypeIn(dialog, IDC_TXT_CATEGORY_KEY, "dropped");
    CHECK(SendMessageA(dialog, WM_QUERYENDSESSION, 0, 0) == 0);
    editor.Answer(dialog, IDCANCEL);
    CHECK(editor.Text(IDC_LBL_STATE).empty());
    open();
    TypeIn(dialog, IDC_TXT_CATEGORY_KEY, "110");
    press(IDC_CMD_CATEGORY_DOWN);
    press(IDC_CMD_CATEGORY_ADD);
    ClickIn(dialog, IDC_CMD_CATEGORY_REMOVE); // a new one holds nothing to ask about
    AWAIT(editor, count() == 2);
    press(IDC_CMD_CATEGORY_ADD);
    CHECK(editor.Focus() == GetDlgItem(dialog, IDC_TXT_CATEGORY_KEY));
    TypeIn(dialog, IDC_TXT_CATEGORY_KEY, "200");
    TypeIn(dialog, IDC_TXT_CATEGORY_FOLDER, "300_new_ones");
    press(IDC_CMD_CATEGORY_UP);
    press(IDC_CHK_SHOW_CATEGORIES);
    ClickIn(dialog, IDOK);
    CHECK(editor.AnswerBox("Category", IDOK) ==
          "The category '200': there is a category with the key \"200\" before it.");
    TypeIn(dialog, IDC_TXT_CATEGORY_KEY, "300");
    editor.CheckShows(dialog, "categories_edited");
    editor.Answer(dialog, IDOK);
    editor.AwaitState("There are unsaved edits.");
    CHECK(editor.Items(IDC_CMB_BASE_PLUGIN + kCategory) ==
          Names{"200 - Some Apps", "300 - New Ones", "110 - 100 Tools"});
    CHECK(editor.Chosen(IDC_CMB_BASE_PLUGIN + kCategory) == 2);
    editor.Apply();
    Catalogue expected = program.catalogue;
    expected.categories = {
        {"200_some_apps", "200", ""}, {"300_new_ones", "300", ""}, {"100_tools", "110", ""}};
    expected.showCategories = true;
    expected.plugins[0].cat = expected.plugins[2].cat = "110";
    editor.CheckSaved(expected);

    // A category that plug-ins are in does not go without a question.
    open();
    SendDlgItemMessageA(dialog, IDC_LST_CATEGORIES, WM_KEYDOWN, VK_END, 1);
    for (const int answer : {IDNO, IDYES}) {
        ClickIn(dialog, IDC_CMD_CATEGORY_REMOVE);
        CheckHolds(editor.AnswerBox("Category", answer), "holds 2 plug-ins");
    }
    press(IDC_CMD_CATEGORY_REMOVE);
    ClickIn(dialog, IDC_CMD_CATEGORY_REMOVE);
    CheckHolds(editor.AnswerBox("Category", IDYES), "holds 1 plug-in,");
    AWAIT(editor, count() == 0);
    for (const int id : {IDC_CMD_CATEGORY_REMOVE, IDC_TXT_CATEGORY_KEY, IDC_TXT_CATEGORY_FOLDER})
        CHECK_FALSE(IsWindowEnabled(GetDlgItem(dialog, id)));
    editor.Answer(dialog, IDOK);
    AWAIT(editor, editor.Items(IDC_CMB_BASE_PLUGIN + kCategory) == Names{"110 (no such category)"});
}
