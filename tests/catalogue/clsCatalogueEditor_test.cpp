#include "catalogue/clsCatalogueEditor.h"

#include "ExpectedText.h"
#include "catalogue/clsCategoryEditor.h"

#include <functional>
#include <map>
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
    const std::vector<std::function<void()>> edits = {
        [&] { editor.SetInstallFolder(" other "); },
        [&] { editor.SetInstallPathItem(1); },
        [&] { editor.Base().MoveDown(); },
        [&] { editor.Plugins().SetField(&CatalogueEntry::cat, " 200 "); },
        [&] {
            editor.TakeCategories({{"x", "9", ""}}, true, {});
        },
        [&] { editor.TakeCategories(editor.Categories(), false, {}); },
    };
    for (const auto& edit : edits) {
        edit();
        CHECK(editor.IsModified());
        editor.Revert();
        CHECK_FALSE(editor.IsModified());
    }
    for (const auto& edit : edits)
        edit();
    editor.Plugins().Select(1);
    CHECK_THROWS(editor.Apply([](const Catalogue&) { throw std::runtime_error("disk full"); }));
    CHECK(editor.IsModified());
    Catalogue saved;
    editor.Apply([&](const Catalogue& catalogue) { saved = catalogue; });
    CHECK_FALSE(editor.IsModified());
    CHECK(editor.Plugins().Selected() == 0);
    CHECK(editor.InstallFolder() == "other"); // as readers get it back
    CHECK(saved.installFolder == "other");
    CHECK(saved.plugins[0].cat == "200");
    CHECK(saved.categories == std::vector<CategoryRecord>{{"x", "9", ""}});
    CHECK_FALSE(saved.showCategories);
    editor.SetInstallFolder("third");
    editor.Revert();
    CHECK(editor.InstallFolder() == "other");
    editor.Offer(BeginnersCatalogue([](const auto& folder, const auto&) { return folder; }));
    CHECK(editor.ShowCategories());
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

TEST_CASE("categories after some steps, and plug-ins that follow the keys of theirs") {
    using Step = void (*)(clsCategoryEditor&, const std::string& value);
    const std::map<std::string, Step> steps = {
        {"select", [](auto& editor, const auto& index) { editor.Select(std::stoi(index)); }},
        {"key", [](auto& editor, const auto& key) { editor.SetKey(key); }},
        {"folder", [](auto& editor, const auto& folder) { editor.SetValue(folder); }},
        {"down", [](auto& editor, const auto&) { editor.MoveDown(); }},
        {"add", [](auto& editor, const auto&) { editor.Add(); }},
        {"remove", [](auto& editor, const auto&) { editor.Remove(); }},
    };
    test::CheckAnswers("category_editor", [&](const std::string& question) {
        clsCategoryEditor categories(
            {{"one", "1", ""}, {"two", "2", ""}, {"three", "3", ""}, {"twin", "3", ""}},
            [](const std::string& folder, const std::string& key) { return key + ":" + folder; });
        for (const std::string& step : Split(question, ' ')) {
            const std::size_t sign = step.find('=');
            const Step take = steps.at(step.substr(0, sign));
            take(categories, step.substr(sign + 1));
        }
        std::string text = "selected " + std::to_string(categories.Selected()) + ", was <" +
                           categories.OriginalKey() + ">;";
        for (const CategoryRecord& category : categories.Categories())
            text += " " + category.key + " " + category.value + " " + category.caption + ";";
        Catalogue catalogue;
        for (const char* key : {"1", "2", "3", "gone"})
            catalogue.plugins.push_back(Entry("p", false, key));
        clsCatalogueEditor editor(catalogue);
        editor.Plugins().Select(2);
        editor.TakeCategories(categories.Categories(), false, categories.Renames());
        CHECK(editor.Plugins().Selected() == 2);
        text += " plug-ins in";
        for (const CatalogueEntry& plugin : editor.Edited().plugins)
            text += " " + plugin.cat;
        return text + "\n";
    });
}
