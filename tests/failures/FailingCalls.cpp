/// A layer between veskbuild and the system that can make any one call fail. The linker's --wrap
/// puts it there: the delivered objects are linked as they are, and know nothing of it.
///
/// The environment says what it does:
///   VESK_FAIL_CALL, VESK_FAIL_AT, VESK_FAIL_WITH   the function, its call (1: the first), the
///   reason VESK_FAIL_ON      1: each later call fails as well VESK_FAIL_REPORT  the file that
///   tells at the end how often each function was called, what was
///                     opened and not closed, and what the registry holds below VESK_FAIL_KEY
///   VESK_FAIL_PLACES  1: it also tells the first call from each place in the program
///   VESK_FAIL_SHELL   the folder that stands for desktop and start menu
#include <winsock2.h>

#include <windows.h>

#include <fdi.h>
#include <shellapi.h>
#include <shlobj.h>
#include <wincrypt.h>
#include <wininet.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>
#include <type_traits>

#pragma GCC diagnostic ignored "-Wignored-attributes" // of types that are template arguments

namespace {

constexpr DWORD kHalf = 0xFFFFFFFE;

enum Kind {
    kNothing,
    kHandle,
    kView,
    kFind,
    kFile,
    kKey,
    kSocket,
    kWindow,
    kCabinet,
    kBlock,
    kLocal,
    kLibrary,
    kKinds
};
constexpr int Opens(Kind kind) {
    return kind;
}
constexpr int Closes(Kind kind) {
    return -kind;
}

enum Where { InLastError, InResult, InWinsock };

#define FAILS(name, ...) k_##name,
#define FAILS_C(name, ...) k_##name,
#define FAILS_LATE(name, ...) k_##name,
#define METHOD(interface, name, ...) k_##interface##_##name,
#define CLOSES(name, kind) k_##name,
#define KEEPS(name, why)
enum Call {
#include "Calls.inc"
    k_new,
    kCalls
};
#undef FAILS
#undef FAILS_C
#undef FAILS_LATE
#undef METHOD
#undef CLOSES

struct Row {
    const char* name;
    int book;
    Where where;
    std::array<std::int64_t, 6> reasons; ///< Ends with 0.
};

#define FAILS(name, book, where, value, ...) Row{#name, book, where, {__VA_ARGS__}},
#define FAILS_LATE(name, book, where, value, ...) Row{#name, book, where, {__VA_ARGS__}},
#define FAILS_C(name, book, value) Row{#name, book, InLastError, {ERROR_NOT_ENOUGH_MEMORY}},
#define METHOD(interface, name, ...) Row{#interface "::" #name, 0, InResult, {E_FAIL}},
#define CLOSES(name, kind) Row{#name, Closes(kind), InLastError, {}},
constexpr Row kRows[] = {
#include "Calls.inc"
    Row{"operator new", 0, InLastError, {ERROR_NOT_ENOUGH_MEMORY}},
};
#undef FAILS
#undef FAILS_C
#undef FAILS_LATE
#undef METHOD
#undef CLOSES

const char* const kKindNames[kKinds] = {"",       "handle", "view",    "find",  "file",  "key",
                                        "socket", "window", "cabinet", "block", "local", "library"};

// Nothing here takes memory: the calls that are counted include those for memory.
bool armed = false;
int chosen = -1;
std::uint32_t chosenAt = 0;
DWORD chosenReason = 0;
bool fromThenOn = false;
bool tellsPlaces = false;
std::uint32_t counts[kCalls] = {};
int open[kKinds] = {};
char shellFolder[MAX_PATH] = {};
int lastShellFolder = 0;

struct Place {
    std::uint64_t mark; ///< Of the call and everything that called it; 0: free.
    std::uint32_t call;
    std::uint32_t first;
};
Place places[std::size_t{1} << 18];

void NotePlace(int call) {
    void* frames[62];
    // Memory is taken everywhere: there the nearest callers are enough.
    const ULONG most = call == k_new ? 8 : std::size(frames);
    const USHORT depth = RtlCaptureStackBackTrace(2, most, frames, nullptr);
    std::uint64_t mark = 14695981039346656037U + static_cast<std::uint64_t>(call);
    for (USHORT i = 0; i < depth; ++i)
        mark = (mark ^ reinterpret_cast<std::uintptr_t>(frames[i])) * 1099511628211U;
    mark |= 1;
    for (std::size_t i = mark >> 20;; ++i) {
        Place& place = places[i % std::size(places)];
        if (place.mark == mark)
            return;
        if (place.mark == 0) {
            place = {mark, static_cast<std::uint32_t>(call), counts[call]};
            return;
        }
    }
}

/// Counts a call. @return the reason for which it is to fail, or 0
DWORD Judge(int call) {
    if (!armed)
        return 0;
    ++counts[call];
    if (tellsPlaces) {
        const DWORD error = GetLastError();
        NotePlace(call);
        SetLastError(error);
    }
    const bool now = counts[call] == chosenAt || (fromThenOn && counts[call] > chosenAt);
    return call == chosen && now ? chosenReason : 0;
}

void Note(int book, bool succeeded) {
    if (armed && succeeded && book != 0)
        open[std::abs(book)] += book > 0 ? 1 : -1;
}

template <int Id>
struct Tag {};

// What a call does before it fails, beyond its result; what half of a call is.
template <class Tag, class... A>
void OnFailure(Tag, A...) {}
template <class Tag, class... A>
void OnSuccess(Tag, A...) {}
template <class Real, class Tag, class... A>
auto Half(Real real, Tag, A... a) {
    return real(a...);
}

void OnFailure(Tag<k_GetPrivateProfileStringA>, LPCSTR section, LPCSTR key, LPCSTR, LPSTR to,
               DWORD size, LPCSTR) {
    std::memset(to, 0, std::min<DWORD>(size, section == nullptr || key == nullptr ? 2 : 1));
}
void OnFailure(Tag<k_fread>, void*, std::size_t, std::size_t, FILE* file) {
    file->_flag |= _IOERR;
}
void OnFailure(Tag<k_fwrite>, const void*, std::size_t, std::size_t, FILE* file) {
    file->_flag |= _IOERR;
}
void OnFailure(Tag<k_fputs>, const char*, FILE* file) {
    file->_flag |= _IOERR;
}
void OnFailure(Tag<k_fflush>, FILE* file) {
    if (file != nullptr)
        file->_flag |= _IOERR;
}
void OnSuccess(Tag<k_CoCreateInstance>, REFCLSID, LPUNKNOWN, DWORD, REFIID, void** made);
void OnSuccess(Tag<k_IShellLinkA_QueryInterface>, void*, REFIID, void** found);
void OnSuccess(Tag<k_SHGetFolderLocation>, HWND, int folder, HANDLE, DWORD, LPITEMIDLIST*) {
    lastShellFolder = folder;
}
void OnSuccess(Tag<k_SHGetPathFromIDListA>, LPCITEMIDLIST, char* path) {
    const bool ours =
        lastShellFolder == CSIDL_DESKTOPDIRECTORY || lastShellFolder == CSIDL_COMMON_PROGRAMS;
    if (ours && *shellFolder != 0)
        std::snprintf(path, MAX_PATH, "%s\\%d", shellFolder, lastShellFolder);
}
template <class Real>
BOOL Half(Real real, Tag<k_ReadFile>, HANDLE file, LPVOID to, DWORD size, LPDWORD read,
          LPOVERLAPPED at) {
    return real(file, to, size / 2, read, at);
}
template <class Real>
BOOL Half(Real real, Tag<k_WriteFile>, HANDLE file, LPCVOID from, DWORD size, LPDWORD written,
          LPOVERLAPPED at) {
    return real(file, from, size / 2, written, at);
}
template <class Real>
int Half(Real real, Tag<k_send>, SOCKET socket, const char* from, int size, int flags) {
    return real(socket, from, size / 2, flags);
}
template <class Real>
int Half(Real, Tag<k_recv>, SOCKET, char*, int, int) {
    return 0; // the other side has ended
}

/// One call on its way to the system.
template <int Id, class Result, class Real, class... A>
Result Through(Real real, Result value, A... a) {
    constexpr const Row& row = kRows[Id];
    const DWORD reason = Judge(Id);
    if (reason == kHalf)
        return Half(real, Tag<Id>(), a...);
    if (reason == 0 || row.book < 0) { // what is to be closed is closed, whatever is said of it
        const Result result = real(a...);
        const bool succeeded = row.where == InResult ? result == Result{} : result != value;
        Note(row.book, succeeded || row.book < 0);
        if (succeeded)
            OnSuccess(Tag<Id>(), a...);
        if (reason == 0)
            return result;
    }
    OnFailure(Tag<Id>(), a...);
    if constexpr (row.where == InResult && std::is_arithmetic_v<Result>)
        return static_cast<Result>(reason);
    if (row.where == InWinsock)
        WSASetLastError(static_cast<int>(reason));
    else
        SetLastError(reason);
    return value;
}

template <int Id, auto& Real, auto Value>
struct Layer {
    template <class R, class... A>
    static R WINAPI Call(A... a) {
        if constexpr (std::is_void_v<R>) {
            Judge(Id);
            Note(kRows[Id].book, true);
            return Real(a...);
        } else {
            return Through<Id>(Real, (R)Value(), a...); // a pointer or a number
        }
    }
    template <class R, class... A>
    static constexpr auto As(std::type_identity<R(WINAPI*)(A...)>) -> R(WINAPI*)(A...) {
        return &Call<R, A...>;
    }
};

} // namespace

// The linker resolves references to the import "__imp_X" as "__wrap___imp_X", and ours to
// "__real___imp_X" as that import.
// NOLINTBEGIN(bugprone-reserved-identifier): these are the linker's names
#define FAILS(name, book, where, value, ...)                                                       \
    extern "C" decltype(&::name) __real___imp_##name;                                              \
    extern "C" {                                                                                   \
    decltype(&::name) __wrap___imp_##name =                                                        \
        Layer<k_##name, __real___imp_##name, [] { return (std::uintptr_t)(value); }>::As(          \
            std::type_identity<decltype(&::name)>());                                              \
    }
#define CLOSES(name, kind) FAILS(name, Closes(kind), InLastError, 0)
#define FAILS_C(...)
#define FAILS_LATE(...)
#define METHOD(...)
#include "Calls.inc"
#undef FAILS
#undef CLOSES
#undef FAILS_C
#undef FAILS_LATE
#undef METHOD

/// A function that the program calls by its own name and not through an import.
#define WRAP(result, name, value, parameters, ...)                                                 \
    extern "C" result __real_##name parameters;                                                    \
    extern "C" result __wrap_##name parameters {                                                   \
        return Through<k_##name>(__real_##name, static_cast<result>(value), __VA_ARGS__);          \
    }

WRAP(FILE*, fopen, nullptr, (const char* path, const char* mode), path, mode)
WRAP(std::size_t, fread, 0, (void* to, std::size_t size, std::size_t count, FILE* file), to, size,
     count, file)
WRAP(std::size_t, fwrite, 0, (const void* from, std::size_t size, std::size_t count, FILE* file),
     from, size, count, file)
WRAP(int, fputs, EOF, (const char* text, FILE* file), text, file)
WRAP(int, fflush, EOF, (FILE * file), file)
WRAP(int, fclose, EOF, (FILE * file), file)
WRAP(void*, malloc, nullptr, (std::size_t size), size)
// A function that the program asks for by its name when it runs.
#define FAILS_LATE(name, book, where, value, ...) decltype(&::name) late_##name = nullptr;
#define FAILS(...)
#define FAILS_C(...)
#define CLOSES(...)
#define METHOD(...)
#include "Calls.inc"
#undef FAILS_LATE

/// GetProcAddress that gives the layer's function in place of the system's.
FARPROC WINAPI FindWithLayer(HMODULE module, LPCSTR name) {
    const FARPROC found =
        Through<k_GetProcAddress>(__real___imp_GetProcAddress, FARPROC{nullptr}, module, name);
#define FAILS_LATE(known, book, where, value, ...)                                                 \
    if (found != nullptr && std::strcmp(name, #known) == 0) {                                      \
        late_##known = reinterpret_cast<decltype(&::known)>(reinterpret_cast<void*>(found));       \
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(                                  \
            Layer<k_##known, late_##known, [] { return (std::uintptr_t)(value); }>::As(            \
                std::type_identity<decltype(&::known)>())));                                       \
    }
#include "Calls.inc"
    return found;
}
#undef FAILS
#undef FAILS_C
#undef FAILS_LATE
#undef CLOSES
#undef METHOD

void* operator new(std::size_t size) {
    void* const block = Judge(k_new) == 0 ? __real_malloc(size != 0 ? size : 1) : nullptr;
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace {

/// An object's table of methods, copied, so that single ones can be ours.
template <class Interface>
struct Methods {
    static constexpr int kSlots = std::is_same_v<Interface, IShellLinkA> ? 21 : 9;
    static inline void* ours[kSlots] = {};
    static inline void** theirs = nullptr;

    static void PutInto(void* object) {
        void**& table = *static_cast<void***>(object);
        if (table == ours)
            return;
        theirs = table;
        std::copy_n(theirs, kSlots, ours);
        Replace();
        table = ours;
    }
    static void Replace();
};

template <int Id, class Interface, int Slot, class... A>
HRESULT STDMETHODCALLTYPE Method(void* object, A... a) {
    using Real = HRESULT(STDMETHODCALLTYPE*)(void*, A...);
    return Through<Id>(reinterpret_cast<Real>(Methods<Interface>::theirs[Slot]), HRESULT{}, object,
                       a...);
}

#define FAILS(...)
#define FAILS_C(...)
#define FAILS_LATE(...)
#define CLOSES(...)
#define METHOD(interface, name, slot, ...)                                                         \
    if constexpr (std::is_same_v<Interface, interface>)                                            \
        ours[slot] = reinterpret_cast<void*>(                                                      \
            &Method<k_##interface##_##name, interface, slot, __VA_ARGS__>);
template <class Interface>
void Methods<Interface>::Replace() {
#include "Calls.inc"
}
#undef FAILS
#undef FAILS_C
#undef FAILS_LATE
#undef CLOSES
#undef METHOD

void OnSuccess(Tag<k_CoCreateInstance>, REFCLSID, LPUNKNOWN, DWORD, REFIID, void** made) {
    Methods<IShellLinkA>::PutInto(*made);
}
void OnSuccess(Tag<k_IShellLinkA_QueryInterface>, void*, REFIID, void** found) {
    Methods<IPersistFile>::PutInto(*found);
}

// NOLINTEND(bugprone-reserved-identifier)

std::uint32_t NumberIn(const char* variable) {
    const char* const text = std::getenv(variable);
    return text != nullptr ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : 0;
}

const char* TextIn(const char* variable) {
    const char* const text = std::getenv(variable);
    return text != nullptr ? text : "";
}

void Begin() {
    for (int i = 0; i < kCalls; ++i)
        if (std::strcmp(kRows[i].name, TextIn("VESK_FAIL_CALL")) == 0)
            chosen = i;
    chosenAt = NumberIn("VESK_FAIL_AT");
    chosenReason = NumberIn("VESK_FAIL_WITH");
    fromThenOn = NumberIn("VESK_FAIL_ON") != 0;
    tellsPlaces = NumberIn("VESK_FAIL_PLACES") != 0;
    lstrcpynA(shellFolder, TextIn("VESK_FAIL_SHELL"), MAX_PATH);
    __wrap___imp_GetProcAddress = &FindWithLayer;
}

/// What the registry holds in a key, a line for each value.
void TellRegistry(FILE* report) {
    HKEY key = nullptr;
    if (__real___imp_RegOpenKeyExA(HKEY_CURRENT_USER, TextIn("VESK_FAIL_KEY"), 0, KEY_READ, &key) !=
        ERROR_SUCCESS)
        return;
    for (DWORD i = 0;; ++i) {
        char name[256];
        BYTE data[1024] = {};
        DWORD nameSize = std::size(name);
        DWORD size = std::size(data) - 1;
        DWORD type = 0;
        if (__real___imp_RegEnumValueA(key, i, name, &nameSize, nullptr, &type, data, &size) !=
            ERROR_SUCCESS)
            break;
        if (type == REG_DWORD)
            std::fprintf(report, "value %s=%lu\n", name, *reinterpret_cast<DWORD*>(data));
        else
            std::fprintf(report, "value %s=%s\n", name, reinterpret_cast<char*>(data));
    }
    __real___imp_RegCloseKey(key);
}

void Tell() {
    FILE* const report = __real_fopen(TextIn("VESK_FAIL_REPORT"), "wb");
    if (report == nullptr)
        return;
    for (int i = 0; i < kCalls; ++i) {
        std::fprintf(report, "call %s %u", kRows[i].name, counts[i]);
        for (const std::int64_t reason : kRows[i].reasons)
            if (reason != 0)
                std::fprintf(report, " %lu", static_cast<DWORD>(reason));
        std::fprintf(report, "\n");
    }
    for (int i = 1; i < kKinds; ++i)
        std::fprintf(report, "open %s %d\n", kKindNames[i], open[i]);
    for (const Place& place : places)
        if (place.mark != 0)
            std::fprintf(report, "place %s %u\n", kRows[place.call].name, place.first);
    TellRegistry(report);
    std::fclose(report);
}

} // namespace

extern "C" int __real_wmain(int count, wchar_t** words);
extern "C" int __wrap_wmain(int count, wchar_t** words) {
    Begin();
    RegDeleteKeyA(HKEY_CURRENT_USER, TextIn("VESK_FAIL_KEY"));
    try { // at the first one the runtime takes memory for itself, without which it ends the program
        throw 0;
    } catch (int) {
    }
    armed = true;
    const int code = __real_wmain(count, words);
    armed = false;
    Tell();
    return code;
}
