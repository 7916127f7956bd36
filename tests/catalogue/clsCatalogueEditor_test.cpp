#include "catalogue/clsCatalogueEditor.h"

#include "ExpectedText.h"
#include "catalogue/clsCategoryEditor.h"

#include <array>
#include <stdexcept>

using namespace vesk;

namespace {

constexpr int kNone = kNoSelection;

CatalogueEntry Entry(const std::string& name, bool lock = false, const std::string& cat = "") {
    return {name, "", cat, false, lock, "", ""};
}

Catalogue Sample() {
    Catalogue catalogue;
    catalogue.installFolder = "tree";
    catalogue.installPathFlag = '0';
    catalogue.baseComponents = {Entry("a"), Entry("b", true), Entry("c")};
    catalogue.plugins = {Entry("p", false, "100"), Entry("q", false, "gone")};
    catalogue.categories = {{"100_system", "100", "System"}, {"200_tools", "200", "Tools"}};
    catalogue.showCategories = true;
    return catalogue;
}

} // namespace

TEST_CASE("list, selection, buttons and question after each action on each entry") {
    std::string text;
    const auto tell = [&](const char* what, const clsEntryEditor& editor) {
        text += what;
        int line = 0;
        for (const std::string& name : editor.Names())
            text += editor.Selected() == line++ ? " [" + name + "]" : " " + name;
        text += std::string(editor.CanRemove() ? ", remove" : "") +
                (editor.CanMoveUp() ? ", up" : "") + (editor.CanMoveDown() ? ", down" : "");
        if (const auto prompt = editor.PromptForRemoval())
            text += ", " + prompt->title + ": " + ReplaceAll(prompt->text, "\r\n", " / ") +
                    (prompt->asksYesNo ? " ?" : "");
        text += "\n";
    };
    const std::pair<const char*, void (clsEntryEditor::*)()> actions[] = {
        {"up:", nullptr}, {"remove:", &clsEntryEditor::Remove}, {"add:", &clsEntryEditor::Add}};
    for (const auto& entries : {Sample().baseComponents, {Entry("only")}, {CatalogueEntry()}}) {
        for (const int select : {0, 1, 2, kNone}) {
            clsEntryEditor editor;
            editor.Load(entries);
            CHECK(editor.Selected() == 0);
            editor.Select(select);
            tell("\nselected:", editor);
            for (const auto& [name, act] : actions) {
                clsEntryEditor copy = editor;
                act ? (copy.*act)() : void(CHECK(copy.MoveUp() == editor.CanMoveUp()));
                tell(name, copy);
            }
            const bool canMove = editor.CanMoveDown();
            CHECK(editor.MoveDown() == canMove);
            tell("down:", editor);
        }
    }
    test::CheckExpected("entry_editor", text);
}

TEST_CASE("edits wait for Apply, and Revert drops them") {
    clsCatalogueEditor editor(Sample());
    CHECK_FALSE(editor.IsModified());
    using Edit = void (*)(clsCatalogueEditor&);
    const std::array<Edit, 6> edits = {
        [](clsCatalogueEditor& e) { e.SetInstallFolder(" other "); },
        [](clsCatalogueEditor& e) { e.SetInstallPathItem(1); },
        [](clsCatalogueEditor& e) { e.Base().MoveDown(); },
        [](clsCatalogueEditor& e) { e.Plugins().SetField(&CatalogueEntry::cat, "200"); },
        [](clsCatalogueEditor& e) {
            e.TakeCategories({{"x", "9", ""}}, true, {});
        },
        [](clsCatalogueEditor& e) { e.TakeCategories(e.Categories(), false, {}); },
    };
    for (const Edit edit : edits) {
        edit(editor);
        CHECK(editor.IsModified());
        editor.Revert();
        CHECK_FALSE(editor.IsModified());
    }
    for (const Edit edit : edits)
        edit(editor);
    editor.Plugins().Select(1);
    CHECK_THROWS(editor.Apply([](const Catalogue&) { throw std::runtime_error("disk full"); }));
    CHECK(editor.IsModified());
    Catalogue saved;
    editor.Apply([&](const Catalogue& catalogue) { saved = catalogue; });
    CHECK_FALSE(editor.IsModified());
    CHECK(editor.Plugins().Selected() == 0);
    CHECK(editor.InstallFolder() == "other"); // as readers get it back
    CHECK(saved.installFolder == "other");
    CHECK(saved.categories == std::vector<CategoryRecord>{{"x", "9", ""}});
    CHECK_FALSE(saved.showCategories);
    editor.SetInstallFolder("third");
    editor.Revert();
    CHECK(editor.InstallFolder() == "other");
}

TEST_CASE("the installation path's two items") {
    Catalogue catalogue = Sample();
    catalogue.installPathFlag = "yes"; // means Program Files in its own way
    clsCatalogueEditor editor(catalogue);
    CHECK(editor.InstallPathItem() == 1);
    editor.SetInstallPathItem(1);
    CHECK_FALSE(editor.IsModified());
    editor.SetInstallPathItem(0);
    CHECK(editor.InstallPathItem() == 0);
    // A list without entries keeps an empty one: the file counts by position.
    const clsCatalogueEditor empty{Catalogue()};
    CHECK_FALSE(empty.IsModified());
    CHECK(empty.Edited().baseComponents == std::vector<CatalogueEntry>(1));
    CHECK(empty.Edited().plugins == std::vector<CatalogueEntry>(1));
}

TEST_CASE("the category combo keeps a key that no category has") {
    clsCatalogueEditor editor(Sample());
    for (const auto& [plugin, items, chosen] : {std::array{0, 2, 0}, {1, 3, 2}, {kNone, 2, -1}}) {
        editor.Plugins().Select(plugin);
        CHECK(static_cast<int>(editor.CategoryItems().size()) == items);
        CHECK(editor.CategoryItemIndex() == chosen);
    }
    CHECK(CategoryItem{"100", ""}.Text() == "100");
}

TEST_CASE("plug-ins follow the keys of their categories, also two that change places") {
    const auto join = [](const std::string& value, const std::string& key) {
        return value + "/" + key;
    };
    clsCategoryEditor categories(Sample().categories, join);
    CHECK(categories.OriginalKey() == "100");
    categories.SetKey("200");
    CHECK(categories.Current()->caption == "100_system/200");
    categories.MoveDown();
    CHECK_FALSE(categories.CanMoveDown());
    categories.Select(0);
    categories.SetKey("100");
    categories.SetValue("v");
    categories.Add();
    CHECK(categories.OriginalKey().empty());
    categories.SetKey("300");
    CHECK(categories.Renames() ==
          std::map<std::string, std::string>{{"100", "200"}, {"200", "100"}});
    CHECK(categories.Categories() ==
          std::vector<CategoryRecord>{
              {"v", "100", "v/100"}, {"100_system", "200", "100_system/200"}, {"", "300", "/300"}});

    // Where two came under one key, the one that still has it keeps its plug-ins.
    clsCategoryEditor twins({{"v", "1", ""}, {"w", "1", ""}}, join);
    twins.SetKey("2");
    CHECK(twins.Renames().empty());

    Catalogue catalogue = Sample();
    catalogue.plugins.push_back(Entry("r", false, "200"));
    clsCatalogueEditor editor(catalogue);
    CHECK(editor.PluginsIn("100") == 1);
    editor.Plugins().Select(2);
    editor.TakeCategories(categories.Categories(), false, categories.Renames());
    const Catalogue edited = editor.Edited();
    CHECK(edited.plugins[0].cat == "200");
    CHECK(edited.plugins[1].cat == "gone");
    CHECK(edited.plugins[2].cat == "100");
    CHECK(editor.Plugins().Selected() == 2);
    categories.Remove();
    CHECK(categories.Selected() == 1);
    categories.Remove();
    categories.Remove();
    CHECK(categories.Selected() == kNone);
    categories.Remove();
    categories.SetKey("nowhere");
    CHECK(categories.Categories().empty());
}
