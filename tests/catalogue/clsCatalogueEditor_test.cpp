#include "catalogue/clsCatalogueEditor.h"

#include <doctest/doctest.h>

#include <array>
#include <stdexcept>

using namespace vesk;

namespace {

constexpr int kNone = clsEntryEditor::kNoSelection;
using Names = std::vector<std::string>;

CatalogueEntry Entry(const std::string& name, bool lock = false, const std::string& cat = "") {
    CatalogueEntry entry;
    entry.name = name;
    entry.lock = lock;
    entry.cat = cat;
    return entry;
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

TEST_CASE("list and selection after each action") {
    using Action = void (*)(clsEntryEditor&);
    const Action up = [](clsEntryEditor& editor) { editor.MoveUp(); };
    const Action down = [](clsEntryEditor& editor) { editor.MoveDown(); };
    const Action remove = [](clsEntryEditor& editor) { editor.Remove(); };
    const Action add = [](clsEntryEditor& editor) { editor.Add(); };
    struct Row {
        const char* what;
        int select;
        int selected; ///< Afterwards.
        Action action;
        Names names;
    };
    for (const Row& row : {
             Row{"up from the top", 0, 0, up, {"a", "b", "c"}},
             Row{"up", 2, 1, up, {"a", "c", "b"}},
             Row{"down", 0, 1, down, {"b", "a", "c"}},
             Row{"down from the end", 2, 2, down, {"a", "b", "c"}},
             Row{"remove the first", 0, kNone, remove, {"b", "c"}},
             Row{"remove the last", 2, 1, remove, {"a", "b"}},
             Row{"remove a locked one", 1, 1, remove, {"a", "b", "c"}},
             Row{"add", 0, 3, add, {"a", "b", "c", ""}},
             Row{"up from none", kNone, kNone, up, {"a", "b", "c"}},
             Row{"down from none", kNone, kNone, down, {"a", "b", "c"}},
             Row{"remove none", 7, kNone, remove, {"a", "b", "c"}},
         }) {
        CAPTURE(row.what);
        clsEntryEditor editor;
        editor.Load(Sample().baseComponents);
        CHECK(editor.Selected() == 0);
        editor.Select(row.select);
        row.action(editor);
        CHECK(editor.Names() == row.names);
        CHECK(editor.Selected() == row.selected);
    }
}

TEST_CASE("what is asked before a removal; the only entry gives way to an empty one") {
    clsEntryEditor editor;
    editor.Load({Entry("only")});
    editor.Remove();
    CHECK(editor.Entries() == std::vector<CatalogueEntry>{CatalogueEntry()});
    CHECK(editor.Selected() == kNone);
    CHECK_FALSE(editor.PromptForRemoval());
    editor.Load(Sample().baseComponents);
    CHECK(
        editor.PromptForRemoval() ==
        EditorPrompt{"Are you sure you want to remove this entry ?\r\n'a'", "Confirmation", true});
    editor.Select(1);
    CHECK(editor.PromptForRemoval() ==
          EditorPrompt{"Plugin is locked, unlock plugin\r\nto delete...", "Locked", false});
}

TEST_CASE("fields and a browsed archive go to the selected entry only") {
    clsEntryEditor editor;
    editor.Load(Sample().baseComponents);
    editor.Select(2);
    editor.SetField(&CatalogueEntry::name, "new");
    editor.SetField(&CatalogueEntry::enabled, true);
    editor.TakeArchive("C:\\some folder\\x.cab", "12ABCD");
    REQUIRE(editor.Current() != nullptr);
    CHECK(editor.Names() == Names{"a", "b", "new"});
    CHECK(editor.Current()->enabled);
    CHECK(editor.Current()->zip == "x.cab");
    CHECK(editor.Current()->crc == "12ABCD");
    CHECK(editor.Entries()[0] == Entry("a"));
    editor.Select(kNone);
    editor.SetField(&CatalogueEntry::name, "nowhere");
    CHECK(editor.Names() == Names{"a", "b", "new"});
}

TEST_CASE("edits wait for Apply, and Revert drops them") {
    clsCatalogueEditor editor(Sample());
    CHECK_FALSE(editor.IsModified());
    struct Row {
        const char* what;
        void (*edit)(clsCatalogueEditor&);
    };
    const std::array rows = {
        Row{"folder", [](clsCatalogueEditor& e) { e.SetInstallFolder("other"); }},
        Row{"path", [](clsCatalogueEditor& e) { e.SetInstallPathItem(1); }},
        Row{"base", [](clsCatalogueEditor& e) { e.Base().MoveDown(); }},
        Row{"plug-in",
            [](clsCatalogueEditor& e) { e.Plugins().SetField(&CatalogueEntry::cat, "200"); }},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        row.edit(editor);
        CHECK(editor.IsModified());
        editor.Revert();
        CHECK_FALSE(editor.IsModified());
        row.edit(editor);
    }
    for (const Row& row : rows)
        row.edit(editor);
    CHECK_THROWS(editor.Apply([](const Catalogue&) { throw std::runtime_error("disk full"); }));
    CHECK(editor.IsModified());
    Catalogue saved;
    editor.Apply([&](const Catalogue& catalogue) { saved = catalogue; });
    CHECK_FALSE(editor.IsModified());
    CHECK(editor.Base().Selected() == 0);
    CHECK(saved.installFolder == "other");
    CHECK(saved.installPathFlag == "1");
    CHECK(saved.plugins.at(0).cat == "200");
    CHECK(saved.categories == Sample().categories);
    CHECK(saved.showCategories);
    editor.SetInstallFolder("third");
    editor.Revert();
    CHECK(editor.InstallFolder() == "other");
}

TEST_CASE("the installation path's two items") {
    CHECK(clsCatalogueEditor::InstallPathItems("D:\\Program Files") ==
          Names{"D:\\", "D:\\Program Files\\"});
    Catalogue catalogue = Sample();
    catalogue.installPathFlag = "yes"; // means Program Files in its own way
    clsCatalogueEditor editor(catalogue);
    CHECK(editor.InstallPathItem() == 1);
    editor.SetInstallPathItem(1);
    CHECK_FALSE(editor.IsModified());
    editor.SetInstallPathItem(0);
    CHECK(editor.InstallPathItem() == 0);
}

TEST_CASE("the category combo keeps a key that no category has") {
    clsCatalogueEditor editor(Sample());
    const std::vector<CategoryItem> known = {{"100", "System"}, {"200", "Tools"}};
    CHECK(editor.CategoryItems() == known);
    CHECK(editor.CategoryItemIndex() == 0);
    editor.Plugins().Select(1);
    std::vector<CategoryItem> extended = known;
    extended.push_back({"gone", "gone"});
    CHECK(editor.CategoryItems() == extended);
    CHECK(editor.CategoryItemIndex() == 2);
    const std::vector<CategoryItem> items = editor.CategoryItems();
    CHECK(items[0].Text() == "100 - System");
    CHECK(items[2].Text() == "gone (no such category)");
    CHECK(CategoryItem{"100", ""}.Text() == "100");
    CHECK(CategoryItem{}.Text() == "(none)");
    editor.Plugins().Select(kNone);
    CHECK(editor.CategoryItemIndex() == -1);
}
