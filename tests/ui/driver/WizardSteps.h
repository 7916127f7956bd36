#pragma once

#include "ExpectedText.h"
#include "ProgramFolder.h"
#include "WizardDriver.h"
#include "ui/resources/ids.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

/// What the tests of the wizard do again and again.
namespace vesk::test {

inline constexpr const char* kBaseHeading = "Vesk Builder Base Components";
inline constexpr const char* kPluginsHeading = "Vesk Builder Plugins";
inline constexpr const char* kSummaryHeading = "Vesk Builder Summary";

/// The wizard of a program folder, with the steps from page to page.
class Wizard : public WizardDriver {
public:
    explicit Wizard(const ProgramFolder& program)
        : WizardDriver(program.Wizard()), program_(program) {}

    void Next(const std::string& heading) const {
        GoTo(IDC_CMD_NEXT, heading);
        if (heading != kSummaryHeading)
            return;
        // While that page comes up the wizard forgets the keys that were pressed before it.
        FocusOn(IDC_TXT_SUMMARY);
        FocusOn(IDC_CMD_NEXT);
    }

    void GoToPlugins() const {
        Next(kBaseHeading);
        Next(kPluginsHeading);
    }

    /// From the welcome page to the summary, with the test's own folder to build into.
    void GoToSummary() const {
        Next(kBaseHeading);
        SetText(IDC_TXT_PROG_PATH, program_.Tree());
        GoToSummaryFromBase();
    }
    void GoToSummaryFromBase() const {
        Next(kPluginsHeading);
        Next(kSummaryHeading);
    }

    void AwaitFinish() const {
        AWAIT(*this, Text(IDC_CMD_NEXT) == "&Finish" && IsEnabled(IDC_CMD_NEXT));
    }

    void Finish() const {
        Click(IDC_CMD_NEXT);
        CHECK(AwaitEnd() == 0);
    }

private:
    const ProgramFolder& program_;
};

/// While it lives a key of the registry has another unnamed value.
class ChangedKey {
public:
    ChangedKey(HKEY root, std::string key, const std::string& value)
        : root_(root), key_(std::move(key)) {
        LONG size = static_cast<LONG>(before_.size());
        RegQueryValueA(root_, key_.c_str(), before_.data(), &size);
        Set(value.c_str());
    }
    ChangedKey(const ChangedKey&) = delete;
    ChangedKey& operator=(const ChangedKey&) = delete;
    ~ChangedKey() { Set(before_.data()); }

private:
    void Set(const char* value) const {
        CHECK(RegSetValueA(root_, key_.c_str(), REG_SZ, value, 0) == ERROR_SUCCESS);
    }
    HKEY root_;
    std::string key_;
    std::array<char, 1024> before_{};
};

inline std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

} // namespace vesk::test
