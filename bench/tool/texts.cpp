#include "bench.h"

#include "RecordingFrontEnd.h"
#include "build/modPluginInf.h"
#include "net/modHttpText.h"
#include "script/modScript.h"

#include <stdexcept>

namespace vesk::bench {

namespace {

/// FILE: runs it as a script.
const Action kScript("script", [](const Arguments& arguments) {
    const ScriptContext context{[](const std::string&) {},
                                [](const std::string&, const std::string&) {}, "C:\\none", "D:"};
    return Figures{Timed([&] {
        try {
            ProcessScript(arguments.at(0), "[base]", context);
        } catch (const std::exception&) { // its first line that cannot be run ends it
        }
    })};
});

/// TREE INF: makes the edits of a build to an INF file in the tree.
const Action kInf("inf", [](const Arguments& arguments) {
    const BuildInputs inputs{
        clsInstallFolder(arguments.at(0), clsFolderGuard::OfSystem("C:\\none\\", "")),
        "",
        "C:\\none\\",
        {},
        false};
    Catalogue catalogue;
    catalogue.showCategories = true;
    test::RecordingFrontEnd frontEnd;
    const clsSha256List sha256(inputs.programPath);
    const clsBuildContext context = frontEnd.Context(inputs, catalogue, sha256);
    const std::string& inf = arguments.at(1);
    const double took = Timed([&] {
        PrefixPluginName(context, inf, "100");
        CommentOutAppendMenu(context, inf);
        SetPluginEnable(context, inf);
    });
    if (!frontEnd.problems.empty() || frontEnd.lines.empty())
        throw std::runtime_error("the INF was not edited");
    return Figures{took};
});

/// BYTES: finds the end of a header that comes in pieces of one byte.
const Action kHeader("header", [](const Arguments& arguments) {
    const std::size_t size = std::stoul(arguments.at(0));
    std::string header;
    return Figures{Timed([&] {
        while (header.size() < size) {
            const std::size_t before = header.size();
            header += before % 64 == 0 ? '\r' : 'x';
            if (FindHeaderEnd(header, before))
                throw std::runtime_error("there is no end in it");
        }
    })};
});

} // namespace

} // namespace vesk::bench
