#include "catalogue/modCatalogueText.h"

#include "ExpectedText.h"
#include "catalogue/modIniText.h"
#include "catalogue/modNameList.h"

using namespace vesk;

namespace {

std::string Listed(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names)
        list += "<" + name + ">";
    return list;
}

} // namespace

TEST_CASE("names in a buffer and of sections, and truth values as catalogues hold them") {
    using Text = std::string;
    test::CheckFunctions(
        "catalogue_texts",
        {
            {"buffer", [](const Text& buffer) { return Listed(SplitNameList(buffer)); }},
            {"sections", [](const Text& ini) { return Listed(SectionNames(ini)); }},
            {"truth",
             [](const Text& value) {
                 const auto truth = ToBoolean(value);
                 return Text(!truth ? "neither" : *truth ? "true" : "false");
             }},
        });
}

TEST_CASE("a key written twice keeps its place and takes the later value") {
    Catalogue catalogue; // as with the profile functions; all else is compared where it is read
    catalogue.categories = {{"old", "x", ""}, {"new", "X", ""}};
    CHECK(CatalogueText(catalogue, "").ends_with("ShowCategories=0\r\nx=new\r\n"));
}
