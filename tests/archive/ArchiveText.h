#pragma once

#include "ExpectedText.h"
#include "archive/CabBuilder.h"

/// Archives as tables of texts describe them: what they hold, and which fields are not as they
/// should be.
namespace vesk::test {

inline std::uint64_t ValueOf(const std::string& number) {
    return std::stoull(number, nullptr, 0);
}

/// @param words "field=value" each, from a certain one on; they go before what is there
inline Fields FieldsIn(const std::vector<std::string>& words, std::size_t from, Fields others) {
    Fields fields;
    for (std::size_t i = from; i < words.size(); ++i) {
        const std::size_t sign = words[i].find('=');
        fields[words[i].substr(0, sign)] = ValueOf(words[i].substr(sign + 1));
    }
    fields.merge(others);
    return fields;
}

/// "TAG:value/bytes,text,..."
inline std::string ExtraOf(const std::string& text) {
    const std::size_t colon = text.find(':');
    std::string data;
    for (const std::string& part : Split(text.substr(colon + 1), ',')) {
        const std::size_t slash = part.find('/');
        data += slash == std::string::npos
                    ? Unescaped(part)
                    : U64(ValueOf(part)).substr(0, static_cast<std::size_t>(part[slash + 1] - '0'));
    }
    return Extra(static_cast<std::uint16_t>(ValueOf(text)), data);
}

/// "KIND name=text+extra+extra field=value ...|...|end field=value ...", where KIND is "stored",
/// "packed" or "locked" (which has the one text that there is).
inline std::string ZipOf(const std::string& text) {
    std::vector<TestMember> members;
    for (const std::string& item : Split(text, '|')) {
        const std::vector<std::string> words = Split(item, ' ');
        if (words[0] == "end")
            return MakeZip(members, FieldsIn(words, 1, {}));
        const std::vector<std::string> parts = Split(words[1], '+');
        const std::size_t sign = parts[0].find('=');
        const std::string name = Unescaped(parts[0].substr(0, sign));
        TestMember& member = members.emplace_back(
            words[0] == "locked" ? TestMember::Encrypted(name)
                                 : (words[0] == "packed" ? TestMember::Packed : TestMember::Stored)(
                                       name, Unescaped(parts[0].substr(sign + 1))));
        member.fields = FieldsIn(words, 2, member.fields);
        for (std::size_t i = 1; i < parts.size(); ++i)
            member.extra += ExtraOf(parts[i]);
    }
    return MakeZip(members);
}

/// "name=text|name=text||name=text field=value ...": each member has a data block, and behind "||"
/// begins a folder.
inline TestCab CabOf(const std::string& text) {
    const std::vector<std::string> words = Split(text, ' ');
    TestCab cab;
    bool inLastFolder = true;
    for (const std::string& item : Split(words[0], '|')) {
        const std::size_t sign = item.find('=');
        if (sign != std::string::npos)
            cab.Add(item.substr(0, sign), item.substr(sign + 1), inLastFolder);
        inLastFolder = sign != std::string::npos;
    }
    cab.fields = FieldsIn(words, 1, cab.fields);
    return cab;
}

} // namespace vesk::test
