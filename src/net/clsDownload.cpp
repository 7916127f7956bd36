#include "net/clsDownload.h"

#include "base/Failure.h"
#include "base/Problem.h"
#include "base/UniqueHandle.h"
#include "base/modFile.h"
#include "base/modFlush.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "net/modHttpText.h"

#include <exception>
#include <utility>

namespace vesk {

namespace {

/// True when the folder lists a file by exactly this name, letter case included.
bool IsListedExactly(const std::string& path) {
    WIN32_FIND_DATAA entry{};
    const FindHandle find(FindFirstFileA(path.c_str(), &entry));
    return find && (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
           FileNameOf(path) == entry.cFileName;
}

/// False only where it is certain that there is none: one that stays is written behind.
bool MayBeFile(const std::string& path) {
    const PathState state = StateOf(path);
    return state == PathState::File || state == PathState::Unknown;
}

FileHandle OpenForWriting(const std::string& path, DWORD disposition) {
    return FileHandle(CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                  disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

/// Opens the file for appending where one of its name stands. @throws Failure
FileHandle OpenInPlaceOf(const std::string& path, bool inAnyCase) {
    // A file whose name differs in letter case is not the one meant and is not deleted: where the
    // system takes both for the same, the bytes follow its own and the checksum tells.
    if (inAnyCase ? MayBeFile(path) : IsListedExactly(path))
        RemoveFile(path);
    // Behind what a killed run left, the bytes would make no archive, and their checksum be right.
    FileHandle file = OpenForWriting(path, inAnyCase ? CREATE_ALWAYS : OPEN_ALWAYS);
    if (!file)
        ThrowLastError("cannot create", path);
    if (SetFilePointer(file.Get(), 0, nullptr, FILE_END) == INVALID_SET_FILE_POINTER &&
        GetLastError() != NO_ERROR)
        ThrowLastError("cannot write", path);
    return file;
}

/// Opens the file for writing. @throws Failure
FileHandle OpenAfresh(const std::string& path, bool inAnyCase) {
    // Mostly nothing stands there. To look first would be to search the folder once more, and each
    // search for what is missing reads all of it where the disk minds letter case.
    FileHandle file = OpenForWriting(path, CREATE_NEW);
    return file ? std::move(file) : OpenInPlaceOf(path, inAnyCase);
}

} // namespace

struct clsDownload::Transfer {
    explicit Transfer(SocketEvents& owner) : cmSocket(owner) {}

    clsSocketMaster cmSocket;
    std::string header; ///< What has come of it.
    bool connected = false;
    bool headerComplete = false;
    FileHandle file;
};

clsDownload::clsDownload(DownloadEvents& owner) : owner_(owner) {}

clsDownload::~clsDownload() = default;

void clsDownload::SetProxy(const std::string& proxy) {
    proxy_ = TrimBlanks(proxy);
}

void clsDownload::SetURL(const std::string& url) {
    url_ = TrimBlanks(url);
}

void clsDownload::SetDestination(const std::string& destination) {
    destination_ = TrimBlanks(destination);
}

void clsDownload::Download(const std::optional<std::string>& url,
                           const std::optional<std::string>& destination) {
    fileSize_ = 0;
    statusLine_.clear();
    failedHere_ = false;
    Cancel();
    try {
        if (url)
            SetURL(*url);
        if (destination)
            SetDestination(*destination);
        transfer_ = std::make_shared<Transfer>(static_cast<SocketEvents&>(*this));
    } catch (const std::exception& failure) {
        return FailHere(failure);
    }
    if (!IsRequestable(url_))
        return FailHere(kBadAddress, "The address holds a control character");
    const std::weak_ptr<Transfer> running = transfer_;
    try {
        Connect();
    } catch (const Failure& failure) {
        if (!running.expired())
            Fail(static_cast<std::int32_t>(failure.number), failure.what());
    } catch (const std::exception& failure) {
        if (running.expired())
            throw;
        FailHere(failure);
    }
}

void clsDownload::Connect() {
    const bool direct = accessType_ == kAccessDirect;
    // The port is always the usual one: a port in the URL is part of the host's text.
    transfer_->cmSocket.Connect(direct ? HostOfUrl(url_) : proxy_, direct ? kHttpPort : proxyPort_);
}

void clsDownload::Cancel() {
    transfer_.reset();
}

DownloadStage clsDownload::Stage() const {
    if (!transfer_ || !transfer_->connected)
        return DownloadStage::Connecting;
    return transfer_->headerComplete ? DownloadStage::Receiving : DownloadStage::Waiting;
}

/// Handles an event of the socket. What is thrown on the way ends the download, which would
/// otherwise wait for ever.
void clsDownload::Guarded(const std::function<void()>& step) {
    const std::weak_ptr<Transfer> running = transfer_;
    try {
        step();
    } catch (const std::exception& failure) {
        if (running.expired())
            throw;
        FailHere(failure);
    }
}

void clsDownload::FailHere(const std::exception& failure) {
    const auto* known = dynamic_cast<const Failure*>(&failure);
    const auto number = known != nullptr ? known->number : std::uint32_t{ERROR_OUTOFMEMORY};
    FailHere(static_cast<std::int32_t>(number),
             known != nullptr ? failure.what() : ReasonOf(failure));
}

void clsDownload::FailHere(std::int32_t number, const std::string& description) {
    failedHere_ = true;
    Fail(number, description);
}

void clsDownload::Fail(std::int32_t number, const std::string& description) {
    Cancel();
    owner_.OnError(number, description);
}

void clsDownload::OnConnect() {
    transfer_->connected = true;
    Guarded([this] {
        if (OpenDestination())
            transfer_->cmSocket.SendData(RequestText(url_, accessType_));
    });
}

bool clsDownload::OpenDestination() {
    try {
        transfer_->file = OpenAfresh(destination_, replacesAnyCase_);
        return true;
    } catch (const Failure& failure) {
        FailHere(static_cast<std::int32_t>(failure.number), failure.what());
        return false;
    }
}

void clsDownload::OnDataArrival(std::int32_t) {
    Guarded([this] {
        if (transfer_->headerComplete)
            DeliverBody();
        else
            CollectHeader();
    });
}

void clsDownload::CollectHeader() {
    Transfer& transfer = *transfer_;
    const std::size_t before = transfer.header.size();
    const std::string_view received =
        transfer.cmSocket.Received().substr(0, kLongestHeader - before);
    const bool tooMuch = received.size() < transfer.cmSocket.Received().size();
    transfer.header.append(received);
    const std::optional<std::size_t> end = FindHeaderEnd(transfer.header, before);
    // What follows the header stays in the socket, so that it is delivered before anything newer
    // even when the owner lets messages run inside OnStarting.
    transfer.cmSocket.DropReceived(end ? *end - before : received.size());
    if (end) {
        transfer.header.resize(*end);
        transfer.headerComplete = true;
        OnHeader(std::exchange(transfer.header, {}));
    } else if (tooMuch) {
        Fail(kHeaderTooLong, "The header of the server's answer does not end");
    }
}

void clsDownload::OnHeader(const std::string& header) {
    statusLine_ = StatusLineOf(header);
    if (const auto error = RecognizeErrorPage(header))
        return Fail(error->number, error->description);
    std::string location = disableRedirection_ ? "" : HeaderValue("Location", header);
    // A line end that reached the next request would end its line and begin another one.
    if (!IsRequestable(location))
        return Fail(kBadAddress,
                    "The server redirects to an address with a control character in it");
    // However many: a circle ends when the owner gives up waiting for the first byte of a file.
    if (!location.empty()) {
        Cancel();
        return Download(std::move(location));
    }
    fileSize_ = LeadingNumber(HeaderValue("Content-Length", header));
    const std::weak_ptr<Transfer> running = transfer_;
    owner_.OnStarting(fileSize_, header);
    if (!running.expired())
        DeliverBody();
}

void clsDownload::DeliverBody() {
    const std::string_view body = transfer_->cmSocket.Received();
    const std::size_t size = body.size();
    if (!AppendToFile(body))
        return;
    transfer_->cmSocket.DropReceived(size);
    owner_.OnDataArrival(static_cast<std::int32_t>(size));
}

bool clsDownload::AppendToFile(std::string_view bytes) {
    DWORD written = 0;
    if (WriteFile(transfer_->file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                  nullptr) != 0 &&
        written == bytes.size()) {
        owner_.OnWritten(bytes);
        return true;
    }
    // A full disk may take a part without an error code.
    FailWriting(written < bytes.size() && written > 0 ? ERROR_DISK_FULL : GetLastError());
    return false;
}

/// Hands the file's bytes to the disk: a name that outlives a power failure must not stand for a
/// file that does not.
bool clsDownload::FlushFile() {
    if (!transfer_->file || FlushToDisk(transfer_->file.Get()))
        return true;
    FailWriting(GetLastError());
    return false;
}

void clsDownload::FailWriting(std::uint32_t error) {
    FailHere(static_cast<std::int32_t>(error),
             "cannot write " + destination_ + ": " + SystemErrorText(error));
}

void clsDownload::OnCloseSck() {
    Guarded([this] { FinishAnswer(); });
}

void clsDownload::FinishAnswer() {
    const std::weak_ptr<Transfer> running = transfer_;
    if (!transfer_->headerComplete) {
        // Without a header the whole answer is the file.
        const std::string content = std::exchange(transfer_->header, {});
        const auto size = static_cast<std::int32_t>(content.size());
        owner_.OnStarting(size, "");
        if (running.expired() || !AppendToFile(content))
            return;
        owner_.OnDataArrival(size);
    } else if (!transfer_->cmSocket.Received().empty()) {
        DeliverBody();
    }
    if (running.expired() || !FlushFile())
        return;
    Cancel();
    owner_.OnCompleted();
}

void clsDownload::OnError(const SocketErrorInfo& error, bool&) {
    // All of the file may have come before.
    if (FlushFile())
        Fail(error.number, error.description);
}

} // namespace vesk
