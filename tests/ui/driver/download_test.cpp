#include "HalfServer.h"
#include "WizardSteps.h"

#include <memory>

using namespace vesk;
using namespace vesk::test;

namespace {

/// A wizard whose build has just half downloaded a plug-in from this test.
struct HalfDownload {
    explicit HalfDownload(HalfServer& server) {
        const std::string crc = clsCRC().CalculateFile(program.Folder().Write("x", server.Body()));
        const std::string none = "http://" + server.Host() + "/none";
        program.catalogue.plugins = {{"Remote", "remote.zip", "100", true, false,
                                      none + ",http://" + server.Host() + "/remote.zip," + none,
                                      crc}};
        program.Save();
        wizard = std::make_unique<Wizard>(program);
        wizard->GoToSummary();
        wizard->Click(IDC_CMD_NEXT);
        dialog = wizard->AwaitDialog("Downloading");
        wizard->Await("half of the download", [&] {
            HalfServer::Serve();
            return TextIn(dialog, IDC_LBL_RATE) == " 50%";
        });
    }

    /// Presses the dialog's Cancel button. @return its question
    [[nodiscard]] HWND AskToCancel() const {
        ClickIn(dialog, IDCANCEL);
        return wizard->AwaitDialog("Confirmation");
    }

    void CheckLog(const std::string& line, bool arrived) const {
        wizard->AwaitFinish();
        CHECK(std::ranges::count(wizard->LogLines(), line) == 1);
        CHECK(FileExists(program.Tree() + "\\Plugin\\100_tools\\remote\\remote.txt") == arrived);
        CHECK(FileExists(program.Path() + "remote.zip") == arrived);
        CHECK_FALSE(FileExists(program.Path() + "remote.zip.vesk-part"));
        CHECK(IsWindowEnabled(wizard->Window()));
    }

    ProgramFolder program;
    std::unique_ptr<Wizard> wizard;
    HWND dialog = nullptr;
};

} // namespace

TEST_CASE("a download shows its progress, goes on after No and ends after Yes") {
    HalfServer server(MakeZip({TestMember::Stored("remote.txt", std::string(3000000, 'r'))}));
    static const bool works = server.IsReady();
    if (!works) {
        MESSAGE("left out: port 80 cannot be used by this user");
        return;
    }
    REQUIRE(server.IsReady());
    const HalfDownload download(server);
    const HWND dialog = download.dialog;
    const std::string missing = server.Host() + " port 80: HTTP/1.1 404 Not Found";
    const auto text = [&](int id) { return TextIn(dialog, id); };

    SUBCASE("finished") {
        CHECK(TextOf(dialog) == "Downloading - 1,500 Mb of 3,000 Mb");
        CHECK(SendDlgItemMessageA(dialog, IDC_SHP_PROGRESS, PBM_GETPOS, 0, 0) == 1942);
        CHECK(text(IDC_LBL_FILE_NAME) == "remote.zip");
        CHECK(text(IDC_LBL_REASON) == "Another address failed: " + missing);
        AWAIT(*download.wizard, IsTidy(dialog));
        CHECK_FALSE(IsWindowEnabled(download.wizard->Window()));
        CHECK((GetWindowLongA(dialog, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0);
        download.wizard->Answer(download.AskToCancel(), IDNO);
        server.SendRest();
        download.CheckLog("Downloading: remote.zip", true);
        CHECK(SendMessageA(download.wizard->Control(IDC_BAR_OVERALL), PBM_GETPOS, 0, 0) == 1000);
    }
    SUBCASE("stalled, then broken off behind the open question") {
        AWAIT(*download.wizard, text(IDC_LBL_DETAIL).starts_with("No data for "));
        const HWND question = download.AskToCancel();
        CHECK(TextIn(question, 0xFFFF) == "Are you sure you want to cancel download");
        server.HangUp();
        AWAIT(*download.wizard, text(IDC_LBL_DETAIL) == "The download failed.");
        CheckStarts(text(IDC_LBL_REASON), missing + "; " + server.Host() + " port 80: 1,500,");
        CHECK(text(IDC_LBL_REASON).ends_with(" bytes came"));
        CHECK(FileExists(download.program.Path() + "remote.zip.vesk-part"));
        CHECK_FALSE(FileExists(download.program.Path() + "remote.zip"));
        download.wizard->Answer(question, IDNO);
        download.CheckLog("Warning: remote.zip CRC failed. !!!", false);
    }
    SUBCASE("cancelled") {
        download.wizard->Answer(download.AskToCancel(), IDYES);
        download.CheckLog("Warning: download cancelled by user. !!!", false);
    }
}
