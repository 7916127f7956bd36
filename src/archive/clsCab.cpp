#include "archive/clsCab.h"

#include "archive/modMemberName.h"
#include "base/Failure.h"
#include "base/Trace.h"
#include "base/modFile.h"
#include "base/modText.h"

#include <windows.h>

#include <setupapi.h>

#include <algorithm>
#include <array>
#include <exception>
#include <optional>
#include <string_view>

namespace vesk {

namespace {

/// What an iteration is for; handed to the setup library as the iteration's context.
enum class Mode : UINT_PTR { Count = 0, List = 1, Extract = 2, Xml = 3 };

[[noreturn]] void RaiseCabFailure(std::uint32_t number) {
    struct Row {
        std::uint32_t code;
        const char* text;
    };
    static constexpr std::array kTexts = {
        Row{2, "The system cannot find the file specified."},
        Row{3, "The system cannot find the path specified."},
        Row{4, "The system cannot open the file."},
        Row{5, "Access is denied."},
        Row{8, "Not enough storage is available to process this command."},
        Row{13, "Invalid data."},
        Row{14, "Not enough storage is available to complete this operation."},
        Row{15, "The system cannot find the drive specified."},
        Row{19, "The media is write protected."},
        Row{20, "The system cannot find the device specified."},
        Row{21, "The device is not ready."},
        Row{23, "Data error (cyclic redundancy check)."},
        Row{25, "The drive cannot locate a specific area or track on the disk."},
        Row{26, "The specified disk or diskette cannot be accessed."},
        Row{27, "The drive cannot find the sector requested."},
        Row{29, "The system cannot write to the specified device."},
        Row{30, "The system cannot read from the specified device."},
        Row{31, "A device attached to the system is not functioning."},
        Row{32, "The process cannot access the file because it is being used by another process."},
        Row{33, "The process cannot access the file because another process has locked a portion "
                "of the file."},
        Row{39, "The disk is full."},
        Row{82, "The directory or file cannot be created."},
        Row{111, "The file name is too long."},
        Row{112, "There is not enough space on the disk."},
        Row{123, "The filename, directory name, or volume label syntax is incorrect."},
    };
    const auto* const row = std::ranges::find(kTexts, number, &Row::code);
    throw Failure(number, "CabFile", row == kTexts.end() ? "Unknown error." : row->text);
}

CalendarTime CalendarFromDos(WORD date, WORD time) {
    FILETIME stored{};
    FILETIME local{};
    SYSTEMTIME calendar{};
    if (DosDateTimeToFileTime(date, time, &stored) == 0 ||
        FileTimeToLocalFileTime(&stored, &local) == 0 ||
        FileTimeToSystemTime(&local, &calendar) == 0)
        return {};
    return {calendar.wYear, calendar.wMonth,  calendar.wDay,
            calendar.wHour, calendar.wMinute, calendar.wSecond};
}

/// The callback's own calls must not pass for the last error of the setup library.
class KeepLastError {
public:
    KeepLastError() = default;
    KeepLastError(const KeepLastError&) = delete;
    KeepLastError(KeepLastError&&) = delete;
    KeepLastError& operator=(const KeepLastError&) = delete;
    KeepLastError& operator=(KeepLastError&&) = delete;
    ~KeepLastError() { SetLastError(error_); }

private:
    DWORD error_ = GetLastError();
};

/// One pass over a cabinet. It works on copies of the cabinet object's settings, which an event may
/// change or destroy.
class Iteration {
public:
    Iteration(const clsCab& cab, Mode mode, std::weak_ptr<CabEvents*> owner)
        : mode_(mode),
          cabName_(cab.CabName),
          wanted_(cab.FileToExtract),
          destination_(cab.DestinationFolder),
          owner_(std::move(owner)) {}

    void Run();
    [[nodiscard]] std::int32_t Count() const { return count_; }
    [[nodiscard]] std::string Xml() const { return CabXml(cabName_, members_); }

private:
    struct Target {
        std::string path;
        std::uint32_t size = 0;
    };

    static UINT CALLBACK Notify(PVOID context, UINT notification, UINT_PTR first, UINT_PTR second);

    UINT Answer(Mode mode, UINT notification, UINT_PTR parameter);
    UINT OnMember(Mode mode, FILE_IN_CABINET_INFO_A& info);
    UINT OnMemberListed(const FILE_IN_CABINET_INFO_A& info);
    UINT OnMemberToExtract(FILE_IN_CABINET_INFO_A& info);
    UINT OnMemberExtracted(const FILEPATHS_A& paths);
    void RemoveIncomplete();
    void RaiseOutcome(bool held, DWORD error) const;

    template <class Event>
    bool Raise(Event event);

    [[nodiscard]] bool Matches(const std::string& name) const {
        return wanted_.empty() || EqualNoCase(wanted_, name);
    }

    static Iteration* running_;

    Mode mode_;
    std::string cabName_;
    std::string wanted_;
    std::string destination_;
    std::weak_ptr<CabEvents*> owner_;

    std::int32_t count_ = 0;
    std::vector<CabMember> members_;
    std::optional<Target> writing_; ///< Handed to the library and not reported extracted yet.
    bool stopped_ = false;          ///< Nothing more is wanted; the end is no failure.
    bool continued_ = false;        ///< The cabinet goes on in another one.
    bool incomplete_ = false;       ///< A member was removed because it is not whole.
    std::exception_ptr failure_;    ///< What an event or the callback threw.
};

Iteration* Iteration::running_ = nullptr;

CabMember MemberOf(const FILE_IN_CABINET_INFO_A& info) {
    CabMember member;
    member.fullName = info.NameInCabinet;
    member.fileName = FileNameOf(member.fullName);
    member.folder = ParentOf(member.fullName);
    member.size = static_cast<std::int32_t>(info.FileSize);
    member.time = CalendarFromDos(info.DosDate, info.DosTime);
    return member;
}

bool HasSize(const std::string& path, std::uint32_t size) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    return GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data) != 0 &&
           data.nFileSizeHigh == 0 && data.nFileSizeLow == size;
}

void Iteration::Run() {
    constexpr std::uint32_t kNoCabName = 0x800407A4;
    if (cabName_.empty())
        throw Failure(kNoCabName, "CabFile",
                      "You must set the CabName property before taking any action on the CabFile "
                      "object.");
    if (running_ != nullptr)
        throw Failure(ERROR_BUSY, "CabFile",
                      "Another cabinet is being read; it must come to its end first.");
    if (mode_ == Mode::Extract && destination_.empty())
        destination_ = ParentOf(AbsolutePath(cabName_));

    running_ = this;
    SetLastError(ERROR_SUCCESS);
    const bool held = SetupIterateCabinetA(cabName_.c_str(), 0, &Iteration::Notify,
                                           reinterpret_cast<PVOID>(mode_)) != 0; // NOLINT
    const DWORD error = GetLastError();
    running_ = nullptr;

    RemoveIncomplete();
    RaiseOutcome(held, error);
}

void Iteration::RaiseOutcome(bool held, DWORD error) const {
    if (failure_)
        std::rethrow_exception(failure_);
    const bool ended = held || stopped_ || continued_;
    if (ended && !incomplete_)
        return;
    if (continued_)
        RaiseCabFailure(ERROR_FILE_NOT_FOUND);
    // Damage is not always given a number: the last error is then zero, or left over from
    // creating a file that existed.
    const bool telling = !held && error != ERROR_SUCCESS && error != ERROR_ALREADY_EXISTS;
    RaiseCabFailure(telling ? error : ERROR_INVALID_DATA);
}

void Iteration::RemoveIncomplete() {
    if (!writing_)
        return;
    incomplete_ = true;
    if (DeleteFileA(writing_->path.c_str()) == 0 && FileExists(writing_->path))
        Trace("incomplete, and cannot be removed: " + writing_->path);
    writing_.reset();
}

UINT CALLBACK Iteration::Notify(PVOID context, UINT notification, UINT_PTR first,
                                UINT_PTR /*second*/) {
    const KeepLastError keepLastError;
    Iteration& iteration = *running_;
    try {
        return iteration.Answer(static_cast<Mode>(reinterpret_cast<UINT_PTR>(context)),
                                notification, first);
    } catch (...) {
        // No exception may travel through the library's frames.
        iteration.failure_ = std::current_exception();
        iteration.stopped_ = true;
        return notification == SPFILENOTIFY_FILEINCABINET ? FILEOP_ABORT : ERROR_CANCELLED;
    }
}

UINT Iteration::Answer(Mode mode, UINT notification, UINT_PTR parameter) {
    switch (notification) {
    case SPFILENOTIFY_FILEINCABINET:
        // Some versions of the library go on after an abort, which then has to be repeated.
        return stopped_ ? FILEOP_ABORT
                        : OnMember(mode, *reinterpret_cast<FILE_IN_CABINET_INFO_A*>(parameter));
    case SPFILENOTIFY_NEEDNEWCABINET:
        // Further cabinets are not followed, and "no error" would make the library look for one.
        continued_ = true;
        return ERROR_FILE_NOT_FOUND;
    case SPFILENOTIFY_FILEEXTRACTED:
        return OnMemberExtracted(*reinterpret_cast<const FILEPATHS_A*>(parameter));
    default:
        return NO_ERROR;
    }
}

UINT Iteration::OnMember(Mode mode, FILE_IN_CABINET_INFO_A& info) {
    switch (mode) {
    case Mode::List:
        return OnMemberListed(info);
    case Mode::Extract:
        return OnMemberToExtract(info);
    case Mode::Xml:
        members_.push_back(MemberOf(info));
        return FILEOP_SKIP;
    case Mode::Count:
        break;
    }
    ++count_;
    return FILEOP_SKIP;
}

UINT Iteration::OnMemberListed(const FILE_IN_CABINET_INFO_A& info) {
    const CabMember member = MemberOf(info);
    if (!Matches(member.fullName))
        return FILEOP_SKIP;
    if (!Raise([&](CabEvents& owner) { owner.OnFileFound(member); }))
        return FILEOP_ABORT;
    if (wanted_.empty())
        return FILEOP_SKIP;
    stopped_ = true;
    return FILEOP_ABORT;
}

UINT Iteration::OnMemberToExtract(FILE_IN_CABINET_INFO_A& info) {
    const std::string name = info.NameInCabinet;
    if (!Matches(name))
        return FILEOP_SKIP;
    bool cancel = false;
    if (!Raise([&](CabEvents& owner) { owner.OnBeforeExtract(cancel, name); }))
        return FILEOP_ABORT;
    if (cancel)
        return FILEOP_SKIP;

    const auto path = PathInside(destination_, name);
    if (!path || HasLinkBelow(destination_, *path)) {
        Trace("not extracted, its name leads elsewhere: " + name);
        return FILEOP_SKIP;
    }
    if (path->size() >= sizeof info.FullTargetName)
        RaiseCabFailure(ERROR_BUFFER_OVERFLOW);
    try {
        CreateFolderPath(ParentOf(*path));
    } catch (const Failure& failure) {
        RaiseCabFailure(failure.number);
    }
    // An older file goes now: what stands there after a failure is then the library's own, or it is
    // something that could not be overwritten and stays.
    DeleteFileA(path->c_str());
    info.FullTargetName[path->copy(info.FullTargetName, path->size())] = '\0';
    writing_ = Target{*path, info.FileSize};
    return FILEOP_DOIT;
}

UINT Iteration::OnMemberExtracted(const FILEPATHS_A& paths) {
    // A damaged member may be reported without an error, so its size is looked at as well.
    if (paths.Win32Error != NO_ERROR || !writing_ || !HasSize(writing_->path, writing_->size)) {
        if (writing_) // its attributes may have been set already
            SetFileAttributesA(writing_->path.c_str(), FILE_ATTRIBUTE_NORMAL);
        RemoveIncomplete();
        return paths.Win32Error;
    }
    const std::string path = writing_->path;
    writing_.reset();
    Raise([&](CabEvents& owner) { owner.OnAfterExtract(path); });
    return NO_ERROR;
}

/// Raises one event. @return false when the iteration is to end because the cabinet object is gone
template <class Event>
bool Iteration::Raise(Event event) {
    CabEvents* const owner = owner_.expired() ? nullptr : *owner_.lock();
    if (owner != nullptr)
        event(*owner);
    stopped_ = stopped_ || owner_.expired();
    return !stopped_;
}

} // namespace

clsCab::clsCab(CabEvents* owner) : owner_(std::make_shared<CabEvents*>(owner)) {}

std::int32_t clsCab::FileCount() {
    Iteration iteration(*this, Mode::Count, owner_);
    iteration.Run();
    return iteration.Count();
}

void clsCab::Extract() {
    Iteration(*this, Mode::Extract, owner_).Run();
}

void clsCab::GetInfo() {
    Iteration(*this, Mode::List, owner_).Run();
}

std::string clsCab::GetXML() {
    Iteration iteration(*this, Mode::Xml, owner_);
    iteration.Run();
    return iteration.Xml();
}

} // namespace vesk
