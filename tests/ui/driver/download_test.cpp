#include "HalfServer.h"

#include "ProgramFolder.h"
#include "WizardDriver.h"
#include "ui/resources/ids.h"

#include <commctrl.h>

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

using namespace vesk;
using namespace vesk::test;

namespace {

/// A wizard whose build has just half downloaded a plug-in from this test.
struct HalfDownload {
    explicit HalfDownload(HalfServer& server, ProgramFolder& program, const std::string& crc) {
        program.catalogue.plugins = {
            {"Remote", "remote.zip", "100", true, false, "http://127.0.0.1/remote.zip", crc}};
        program.Save();
        wizard = std::make_unique<WizardDriver>(program.Wizard());
        for (const char* heading :
             {"Vesk Builder Base Components", "Vesk Builder Plugins", "Vesk Builder Summary"}) {
            wizard->SetText(IDC_TXT_PROG_PATH, program.Tree());
            wizard->GoTo(IDC_CMD_NEXT, heading);
        }
        wizard->Click(IDC_CMD_NEXT);
        dialog = wizard->AwaitDialog("Downloading");
        REQUIRE(WaitUntil([&] {
            server.Serve();
            return Percent() == " 50%";
        }));
    }

    [[nodiscard]] std::string Text(int id) const {
        std::string text(500, '\0');
        text.resize(GetDlgItemTextA(dialog, id, text.data(), static_cast<int>(text.size())));
        return text;
    }
    [[nodiscard]] std::string Percent() const { return Text(IDC_LBL_RATE); }

    /// Presses the dialog's Cancel button. @return its question
    [[nodiscard]] HWND AskToCancel() const {
        PostMessageA(GetDlgItem(dialog, IDCANCEL), BM_CLICK, 0, 0);
        const HWND question = wizard->AwaitDialog("Confirmation");
        CHECK(WizardDriver::BoxText(question) == "Are you sure you want to cancel download");
        return question;
    }

    void Cancel(int answer) const { WizardDriver::Answer(AskToCancel(), answer); }

    std::vector<std::string> AwaitLog() const {
        REQUIRE(WaitUntil([&] { return wizard->Text(IDC_CMD_NEXT) == "&Finish"; }));
        return wizard->LogLines();
    }

    std::unique_ptr<WizardDriver> wizard;
    HWND dialog = nullptr;
};

bool Holds(const std::vector<std::string>& lines, const std::string& wanted) {
    return std::ranges::find(lines, wanted) != lines.end();
}

} // namespace

TEST_CASE("a download shows its progress, goes on after No and ends after Yes") {
    const std::string archive =
        MakeZip({TestMember::Stored("remote.txt", std::string(3000000, 'r'))});
    HalfServer server(archive);
    if (!server.IsReady()) {
        MESSAGE("left out: port 80 cannot be used by this user");
        return;
    }
    const std::string crc = [&] {
        std::array<char, 9> text{};
        std::snprintf(text.data(), text.size(), "%X", CrcOf(archive));
        return std::string(text.data());
    }();

    SUBCASE("finished") {
        ProgramFolder program;
        HalfDownload download(server, program, crc);
        std::string title(100, '\0');
        title.resize(static_cast<std::size_t>(GetWindowTextA(download.dialog, title.data(), 100)));
        CHECK(title == "Downloading - 1,500 Mb of 3,000 Mb");
        CHECK(SendDlgItemMessageA(download.dialog, IDC_SHP_PROGRESS, PBM_GETPOS, 0, 0) == 1942);
        CHECK_FALSE(IsWindowEnabled(download.wizard->Window()));
        CHECK((GetWindowLongA(download.dialog, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0);
        download.Cancel(IDNO);
        server.SendRest();
        const auto lines = download.AwaitLog();
        CHECK(Holds(lines, "Downloading: remote.zip"));
        CHECK(FileExists(program.Tree() + "\\Plugin\\100_tools\\remote\\remote.txt"));
        CHECK(IsWindowEnabled(download.wizard->Window()));
    }
    SUBCASE("stalled, then broken off behind the open question") {
        ProgramFolder program;
        const HalfDownload download(server, program, crc);
        CHECK(WaitUntil([&] { return download.Text(IDC_LBL_DETAIL).starts_with("No data for "); }));
        const HWND question = download.AskToCancel();
        server.HangUp();
        CHECK(WaitUntil([&] { return download.Text(IDC_LBL_DETAIL) == "The download failed."; }));
        const std::string reason = download.Text(IDC_LBL_REASON);
        CHECK(reason.starts_with("127.0.0.1 port 80: 1,500,"));
        CHECK(reason.ends_with(" bytes came"));
        CHECK(FileExists(program.Path() + "remote.zip.vesk-part"));
        CHECK_FALSE(FileExists(program.Path() + "remote.zip"));
        WizardDriver::Answer(question, IDNO);
        CHECK(Holds(download.AwaitLog(), "Warning: remote.zip CRC failed. !!!"));
        CHECK_FALSE(FileExists(program.Path() + "remote.zip.vesk-part"));
    }
    SUBCASE("cancelled") {
        ProgramFolder program;
        const HalfDownload download(server, program, crc);
        download.Cancel(IDYES);
        CHECK(Holds(download.AwaitLog(), "Warning: download cancelled by user. !!!"));
        CHECK_FALSE(FileExists(program.Path() + "remote.zip"));
    }
}
