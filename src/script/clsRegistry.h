#pragma once

#include "script/modRegistryData.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

/// Keys and values of the registry. A root is the number of a predefined key (0x80000001 for the
/// current user), a key path is relative to it. Every operation opens the key it needs and closes
/// it again. What the registry refuses shows in the results only; nothing is thrown but what
/// SetKeyValue says.
class clsRegistry {
public:
    /// Names of the keys below a key; nothing when it cannot be opened.
    [[nodiscard]] static std::optional<std::vector<std::string>>
    EnumKeys(std::uint32_t root, const std::string& keyPath);

    /// Names and raw data of a key's values, up to the first that does not fit into 255 characters:
    /// there the enumeration ends. Both are cut at their first NUL.
    static void EnumValues(std::uint32_t root, const std::string& keyPath,
                           std::vector<std::string>& names, std::vector<std::string>& values);

    /// The file name extensions that are registered, in upper case and without the dot.
    static void GetFileTypes(std::vector<std::string>& list);

    /// Writes one value into a key that exists already. Types 1 (text), 3 (binary), 4 (number) and
    /// 7 (list of texts) are written, other types are not.
    /// @return whether it was written; for type 3 the opposite; false for types that are not
    /// written. The thread's last error says what became of it in every case.
    /// @throws Failure when the data cannot be taken as that type
    // Type 3's result and the missing type 2 are relied on as they are.
    static bool SetKeyValue(std::uint32_t root, const std::string& keyPath,
                            const std::string& valueName, const RegistryData& data,
                            std::uint32_t type);

    /// One value as text, cut at its first NUL: a text as it is, an expandable one with its
    /// environment variables replaced, a number in decimal digits, a list as its first text,
    /// anything else as hexadecimal digits. Empty when there is no such value.
    [[nodiscard]] static std::string QueryValue(std::uint32_t root, const std::string& keyPath,
                                                const std::string& valueName);

    /// Deletes one value.
    static void DeleteValue(std::uint32_t root, const std::string& keyPath,
                            const std::string& valueName);

    /// Deletes the key `subKey` below a key. One that has keys below it stays.
    static void DeleteKey(std::uint32_t root, const std::string& keyPath,
                          const std::string& subKey);

    /// Creates a key with all missing levels above it; one that exists already is left as it is.
    /// @return false when the registry refuses; the thread's last error then says why
    static bool CreateNewKey(std::uint32_t root, const std::string& keyPath);

    /// True when no value of the key has a name; the unnamed default value does not count.
    [[nodiscard]] static bool IsPathEmpty(std::uint32_t root, const std::string& keyPath);
};

} // namespace vesk
