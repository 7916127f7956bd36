#include "build/modPluginInf.h"

#include "base/modFile.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "build/clsReportedIni.h"
#include "build/modInfText.h"

#include <windows.h>

namespace vesk {

namespace {

constexpr const char* kOwnSection = "VeskBuilder";

std::string ModifyingLine(const std::string& inf, const std::string& what) {
    return "Modifying INF file: " + inf + " section " + what;
}

} // namespace

void RequireReadable(const std::string& inf) {
    if (inf.size() >= MAX_PATH)
        ThrowSystemError(ERROR_FILENAME_EXCED_RANGE, "cannot read", inf);
    RequireAnsi(inf);
}

clsBuildContext EditingContext(const clsBuildContext& context, const Attempt& attempt) {
    const bool readable = context.ResumeNext(attempt, [&] { RequireReadable(attempt.place); });
    return readable ? context : context.Silent();
}

void CommentOutAppendMenu(const clsBuildContext& context, const std::string& inf) {
    const std::string text = ReadFileIfThere(inf);
    if (text.starts_with(kUtf16Mark) && CommentedOutAppendMenu(AsciiOfUtf16(text)))
        context.report({inf, "[Append] not commented out", kIsUtf16});
    const auto edited = CommentedOutAppendMenu(text);
    if (!edited)
        return;
    context.Status("Modifying INF - Append");
    context.Log(ModifyingLine(inf, "\"Append\""));
    if (!WriteWholeFile(inf, *edited))
        ThrowLastError("cannot write", inf);
}

std::string GetAppendMenuFile(const std::string& inf) {
    return AppendMenuFile(ReadWholeFile(inf));
}

void OnPluginMenuFile(const std::string& path) {
    static_cast<void>(path);
}

void PrefixPluginName(const clsBuildContext& context, const std::string& inf,
                      const std::string& prefix) {
    if (!context.catalogue.showCategories)
        return;
    clsReportedIni ini(context, inf);
    const auto name = PrefixedName(ini.GetStringValue(kPluginSection, "Name"), prefix);
    if (!name)
        return;
    context.Status("Modifying INF - Name");
    context.Log(ModifyingLine(inf, "\"Name\""));
    ini.TellCut(kPluginSection, "Name");
    ini.SetValue(kPluginSection, "Name", *name);
}

void SetPluginEnable(const clsBuildContext& context, const std::string& inf) {
    clsReportedIni ini(context, inf);
    const std::string osTypes = ini.GetStringValue(kOwnSection, "OSType");
    const std::string servicePacks = ini.GetStringValue(kOwnSection, "SP");
    if (TrimBlanks(osTypes).empty() || TrimBlanks(servicePacks).empty())
        return;
    for (const char* list : {"OSType", "SP"})
        ini.TellCut(kOwnSection, list);
    const SourceState& source = context.inputs.source;
    const bool enable =
        ListHolds(osTypes, source.productCode) && ListHolds(servicePacks, source.servicePackCode);
    const std::string value = enable ? "1" : "0";
    context.Log(ModifyingLine(inf, "\"Enable\" = " + value));
    ini.SetValue(kPluginSection, "Enable", value);
}

void CreateCategorySeparator(const clsBuildContext& context, const std::string& relativeInf,
                             const std::string& prefix, const std::string& title) {
    clsReportedIni ini(context, context.PluginFolder() + relativeInf);
    context.Log("Creating INF Separator: " + ini.Path());
    ini.SetValue("Version", "Signature", "$Windows NT$");
    ini.SetValue(kPluginSection, "Name", SeparatorName(prefix, title));
}

} // namespace vesk
