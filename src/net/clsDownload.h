#pragma once

#include "net/DownloadProgress.h"
#include "net/clsSocketMaster.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vesk {

/// The owner of a download. Inside every event it may cancel, restart or destroy the download.
class DownloadEvents {
public:
    virtual ~DownloadEvents() = default;

    /// The answer's header is complete. @param fileSize bytes announced, 0 when unknown
    virtual void OnStarting(std::int32_t fileSize, const std::string& header) = 0;

    /// @param bytesTotal size of the piece just appended to the file
    virtual void OnDataArrival(std::int32_t bytesTotal) = 0;

    /// The piece itself, just before OnDataArrival; here the download must be left alone.
    virtual void OnWritten(std::string_view) {}

    /// The download is over. @param number status of an error page, or the code of the socket
    /// layer or of the system for what went wrong
    virtual void OnError(std::int32_t number, const std::string& description) = 0;

    /// The server closed the connection, and what it sent is on the disk. Whether that is all is
    /// for the owner to judge.
    virtual void OnCompleted() = 0;
};

/// Fetches one file over HTTP/1.0 and writes it to a path, reporting through events. Reusable: each
/// Download starts afresh. Memory use does not depend on the size of the file.
///
/// Everything that goes wrong arrives as OnError, a file that cannot be written included. A header
/// longer than 16 MB is given up with kHeaderTooLong; so is an answer without a header that is,
/// because only its end shows that it has none.
class clsDownload : private SocketEvents {
public:
    /// Number of the error for a header that does not end.
    static constexpr std::int32_t kHeaderTooLong = 431;
    /// Number of the error for a URL that IsRequestable refuses.
    static constexpr std::int32_t kBadAddress = 400;
    static constexpr std::size_t kLongestHeader = std::size_t{16} * 1024 * 1024;

    /// @param owner must outlive the object
    explicit clsDownload(DownloadEvents& owner);
    clsDownload(const clsDownload&) = delete;
    clsDownload& operator=(const clsDownload&) = delete;
    ~clsDownload() override;

    /// Name or address of the proxy.
    [[nodiscard]] const std::string& Proxy() const { return proxy_; }
    void SetProxy(const std::string& proxy);

    /// Port of the proxy.
    [[nodiscard]] std::int32_t ProxyPort() const { return proxyPort_; }
    void SetProxyPort(std::int32_t port) { proxyPort_ = port; }

    /// See vesk::AccessType.
    [[nodiscard]] std::int32_t AccessType() const { return accessType_; }
    void SetAccessType(std::int32_t accessType) { accessType_ = accessType; }

    /// Address of the file; after a redirect, the one that it led to.
    [[nodiscard]] const std::string& URL() const { return url_; }
    void SetURL(const std::string& url);

    /// Full path of the file; what is there is replaced once the connection is made.
    [[nodiscard]] const std::string& Destination() const { return destination_; }
    void SetDestination(const std::string& destination);

    /// Says whether a file is replaced also when its name differs from the destination in letter
    /// case. Otherwise, and at first, the bytes are appended to such a file.
    void SetReplacesAnyCase(bool replaces) { replacesAnyCase_ = replaces; }

    /// Redirects are followed unless this is set.
    [[nodiscard]] bool DisableRedirection() const { return disableRedirection_; }
    void SetDisableRedirection(bool disable) { disableRedirection_ = disable; }

    /// Size of the file in bytes as announced (the greatest 32-bit value when it is larger), or 0.
    [[nodiscard]] std::int32_t FileSize() const { return fileSize_; }

    /// First line of the header that came last from the present URL; empty while none has.
    [[nodiscard]] const std::string& StatusLine() const { return statusLine_; }

    /// How far a running download is.
    [[nodiscard]] DownloadStage Stage() const;

    /// True when the last OnError was about this machine (the file, the URL), not the server.
    [[nodiscard]] bool FailedHere() const { return failedHere_; }

    /// Starts the download, ending one that runs. What is given replaces the property.
    void Download(const std::optional<std::string>& url = {},
                  const std::optional<std::string>& destination = {});

    /// Ends the download without an event. The file stays as far as it was written.
    void Cancel();

private:
    struct Transfer;

    void OnConnect() override;
    void OnDataArrival(std::int32_t bytesTotal) override;
    void OnCloseSck() override;
    void OnError(const SocketErrorInfo& error, bool& cancelDisplay) override;

    void Guarded(const std::function<void()>& step);
    void Fail(std::int32_t number, const std::string& description);
    void FailHere(std::int32_t number, const std::string& description);
    void FailHere(const std::exception& failure);
    void Connect();
    bool OpenDestination();
    void CollectHeader();
    void OnHeader(const std::string& header);
    void DeliverBody();
    void FinishAnswer();
    bool AppendToFile(std::string_view bytes);
    bool FlushFile();
    void FailWriting(std::uint32_t error);

    DownloadEvents& owner_;
    std::string proxy_;
    std::string url_;
    std::string destination_;
    std::int32_t proxyPort_ = 0;
    std::int32_t accessType_ = 0;
    std::int32_t fileSize_ = 0;
    std::string statusLine_;
    bool failedHere_ = false;
    bool disableRedirection_ = false;
    bool replacesAnyCase_ = false;

    /// What exists only while a download runs. After an event a weak pointer to it tells whether
    /// the handler has ended, replaced or destroyed this download.
    std::shared_ptr<Transfer> transfer_;
};

} // namespace vesk
