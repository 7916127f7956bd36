#include "bench.h"

#include "RecordingFrontEnd.h"
#include "build/clsBuildContext.h"
#include "build/modPluginInf.h"
#include "net/modHttpText.h"
#include "script/modScript.h"

#include <stdexcept>

namespace vesk::bench {

void Script(const Arguments& arguments) {
    std::size_t lines = 0;
    const ScriptContext context{[&](const std::string&) { ++lines; },
                                [](const std::string&, const std::string&) {}, "C:\\none", "D:"};
    Print({Timed([&] {
               try {
                   ProcessScript(arguments.at(0), "[base]", context);
               } catch (const std::exception&) { // its first line that cannot be run ends it
               }
           }),
           static_cast<double>(lines)});
}

void Inf(const Arguments& arguments) {
    const BuildInputs inputs{
        clsInstallFolder(arguments.at(0), clsFolderGuard::OfSystem("C:\\none\\", "")),
        "",
        "C:\\none\\",
        {},
        false};
    Catalogue catalogue;
    catalogue.showCategories = true;
    test::RecordingFrontEnd frontEnd;
    std::size_t problems = 0;
    const clsSha256List none;
    const clsBuildContext context{
        inputs, catalogue, frontEnd, {}, [&](const Problem&) { ++problems; }, none};
    const std::string& inf = arguments.at(1);
    const double took = Timed([&] {
        PrefixPluginName(context, inf, "100");
        CommentOutAppendMenu(context, inf);
        SetPluginEnable(context, inf);
    });
    if (problems != 0 || frontEnd.lines.empty())
        throw std::runtime_error("the INF was not edited");
    Print({took});
}

void Header(const Arguments& arguments) {
    const std::size_t size = std::stoul(arguments.at(0));
    std::string header;
    Print({Timed([&] {
        while (header.size() < size) {
            const std::size_t before = header.size();
            header += before % 64 == 0 ? '\r' : 'x';
            if (FindHeaderEnd(header, before))
                throw std::runtime_error("there is no end in it");
        }
    })});
}

} // namespace vesk::bench
