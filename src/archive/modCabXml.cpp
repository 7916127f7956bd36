#include "archive/modCabXml.h"

#include "base/modWide.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <utility>

namespace vesk {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

std::string Escaped(std::wstring_view text) {
    constexpr std::wstring_view kMarkup = L"&<>'\"";
    std::string result;
    for (const wchar_t c : text) {
        if (c < 0x20)
            result += '?'; // XML cannot carry a control character, not even as a reference
        else if (c >= 0x7F || kMarkup.find(c) != std::wstring_view::npos)
            result += "&#" + std::to_string(static_cast<unsigned>(c)) + ";";
        else
            result += static_cast<char>(c);
    }
    return result;
}

using Attributes = std::vector<std::pair<std::string, std::string>>;

/// The blanks around "=" belong to the format: readers of these lists look for them.
std::string Element(const std::string& name, const std::string& content,
                    const Attributes& attributes = {}) {
    std::string start = name;
    for (const auto& [attribute, value] : attributes)
        start += " " + attribute + " = '" + Escaped(Widen(value)) + "'";
    return "<" + start + ">" + content + "</" + name + ">" + std::string(kLineEnd);
}

std::string DateText(const CalendarTime& time) {
    std::array<char, 80> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d %02d:%02d:%02d", time.year,
                  time.month, time.day, time.hour, time.minute, time.second);
    return buffer.data();
}

std::string FileElement(const CabMember& member) {
    const std::wstring_view name = member.wideName;
    const std::size_t parting = name.rfind(L'\\');
    const bool inFolder = parting != std::wstring_view::npos;
    return Element("FILE",
                   Element("FULLNAME", Escaped(name)) +
                       Element("NAME", Escaped(inFolder ? name.substr(parting + 1) : name)) +
                       Element("DATE", DateText(member.time)) +
                       Element("SIZE", std::to_string(member.size)) +
                       Element("PATH", Escaped(inFolder ? name.substr(0, parting) : L"")));
}

} // namespace

std::string CabXml(const std::string& cabName, const std::vector<CabMember>& members) {
    std::string content = Element(
        "CABFILE", "", {{"CABFILENAME", cabName}, {"FILECOUNT", std::to_string(members.size())}});
    for (const CabMember& member : members)
        content += FileElement(member);
    return "<?xml version=\"1.0\"?>" + Element("FILES", content);
}

} // namespace vesk
