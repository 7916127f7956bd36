/// A layer between veskbuild and the system that can make any one call fail. The linker's --wrap
/// puts it there: the delivered objects are linked as they are, and know nothing of it.
///
/// The environment says what it does:
///  - VESK_FAIL_CALL, VESK_FAIL_AT, VESK_FAIL_WITH: function, its call (1: the first), reason
///  - VESK_FAIL_ON: with 1 each later call fails as well
///  - VESK_FAIL_REPORT: the file that tells at the end how often each function was called, what was
///    opened and not closed, and what the registry holds below VESK_FAIL_KEY
///  - VESK_FAIL_PLACES: with 1 it also tells the first call from each place in the program
///  - VESK_FAIL_SHELL: the folder that stands for desktop and start menu
#include "CallPlaces.h"
#include "Imports.h"

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
#include <span>
#include <string_view>
#include <type_traits>

#pragma GCC diagnostic ignored "-Wignored-attributes" // of types that are template arguments

namespace {

constexpr DWORD kHalf = 0xFFFFFFFE;

constexpr std::string_view kKinds[] = {"",       "handle", "view",    "find",  "file",  "key",
                                       "socket", "window", "cabinet", "block", "local", "library"};
consteval int Opens(std::string_view kind) {
    const auto* const found = std::ranges::find(kKinds, kind);
    return found != std::end(kKinds) ? static_cast<int>(found - kKinds) : throw "no such kind";
}
consteval int Closes(std::string_view kind) {
    return -Opens(kind);
}

enum Where { InLastError, InResult, InWinsock };

/// A line of Calls.inc.
struct Row {
    const char* name;
    int book; ///< Of which kind it opens one; negative: closes one.
    Where where;
    std::array<std::int64_t, 6> reasons; ///< Ends with 0.
    void** real = nullptr;               ///< Where the system's is kept, if it is found by name,
    void* ours = nullptr;                ///< and what is given in its place.
};

struct Call : Row {
    static inline std::array<Call*, 256> room = {};
    static inline std::size_t number = 0;
    std::uint32_t count = 0;

    explicit Call(const Row& row) : Row(row) { room.at(number++) = this; }
    static std::span<Call*> All() { return {room.data(), number}; }
    [[nodiscard]] bool Is(const char* function) const { return std::strcmp(name, function) == 0; }
};

// Nothing here takes memory: the calls that are counted include those for memory.
bool armed = false;
const Call* chosen = nullptr;
std::uint32_t chosenAt = 0;
DWORD chosenReason = 0;
bool fromThenOn = false;
bool tellsPlaces = false;
int open[std::size(kKinds)] = {};
char shellFolder[MAX_PATH] = {};
int lastShellFolder = 0;

std::uint64_t registry = kNoMark; ///< Of each value that it took.

/// Counts a call. @return the reason for which it is to fail, or 0
DWORD Judge(Call& call, bool isMemory = false) {
    if (!armed)
        return 0;
    ++call.count;
    if (tellsPlaces) {
        const DWORD error = GetLastError();
        NotePlace(call.name, call.count, isMemory);
        SetLastError(error);
    }
    const bool now = call.count == chosenAt || (fromThenOn && call.count > chosenAt);
    return &call == chosen && now ? chosenReason : 0;
}

void Note(int book, bool succeeded) {
    if (armed && succeeded && book != 0)
        open[std::abs(book)] += book > 0 ? 1 : -1;
}

/// The methods of an object, of which some are ours.
template <class Interface>
struct Methods {
    static constexpr int kSlots = std::is_same_v<Interface, IShellLinkA> ? 21 : 9;
    static inline void* ours[kSlots] = {};
    static inline void* table[kSlots] = {};
    static inline void** theirs = nullptr;

    static void PutInto(void* object) {
        void**& methods = *static_cast<void***>(object);
        if (methods == table)
            return;
        theirs = methods;
        for (int i = 0; i < kSlots; ++i)
            table[i] = ours[i] != nullptr ? ours[i] : theirs[i];
        methods = table;
    }
};

// What a call does besides, when it fails and when not; what half of a call is. "Of_name" stands
// for the function of this name.
template <class Of, class... A>
void OnFailure(Of*, A...) {}
template <class Of, class... A>
void OnSuccess(Of*, A...) {}
template <class Real, class Of, class... A>
auto Half(Real real, Of*, A... a) {
    return real(a...);
}

void OnFailure(struct Of_GetPrivateProfileStringA*, LPCSTR section, LPCSTR key, LPCSTR, LPSTR to,
               DWORD size, LPCSTR) {
    std::memset(to, 0, std::min<DWORD>(size, section == nullptr || key == nullptr ? 2 : 1));
}
void OnSuccess(struct Of_CoCreateInstance*, REFCLSID, LPUNKNOWN, DWORD, REFIID, void** made) {
    Methods<IShellLinkA>::PutInto(*made);
}
void OnSuccess(struct Of_QueryInterface*, void*, REFIID, void** found) {
    Methods<IPersistFile>::PutInto(*found);
}
void OnSuccess(struct Of_SHGetFolderLocation*, HWND, int folder, HANDLE, DWORD, LPITEMIDLIST*) {
    lastShellFolder = folder;
}
void OnSuccess(struct Of_SHGetPathFromIDListA*, LPCITEMIDLIST, char* path) {
    const bool ours =
        lastShellFolder == CSIDL_DESKTOPDIRECTORY || lastShellFolder == CSIDL_COMMON_PROGRAMS;
    if (ours && *shellFolder != 0)
        std::snprintf(path, MAX_PATH, "%s\\%d", shellFolder, lastShellFolder);
}
void OnSuccess(struct Of_RegSetValueExA*, HKEY, LPCSTR name, DWORD, DWORD type, const BYTE* data,
               DWORD size) {
    std::for_each_n(name, std::strlen(name) + 1, [](char c) { Mark(registry, c); });
    std::for_each_n(data, size, [](BYTE byte) { Mark(registry, byte); });
    Mark(registry, type);
}
template <class Real, class Of, class To, class Bytes, class Size, class... A>
requires std::is_integral_v<Size>
auto Half(Real real, Of*, To to, Bytes bytes, Size size, A... a) {
    return real(to, bytes, size / 2, a...);
}
template <class Real>
int Half(Real, struct Of_recv*, SOCKET, char*, int, int) {
    return 0; // the other side has ended
}

template <class A>
void MarkAsFailed(A) {}
void MarkAsFailed(FILE* file) {
    if (file != nullptr)
        file->_flag |= _IOERR;
}

/// One call on its way to the system.
template <class Of, class Result, class Real, class... A>
Result Through(Call& call, Real real, Result value, A... a) {
    const DWORD reason = Judge(call);
    Of* const of = nullptr;
    if (reason == kHalf)
        return Half(real, of, a...);
    if (reason == 0 || call.book < 0) { // what is to be closed is closed, whatever is said of it
        const Result result = real(a...);
        const bool succeeded = call.where == InResult ? result == Result{} : result != value;
        Note(call.book, succeeded || call.book < 0);
        if (succeeded)
            OnSuccess(of, a...);
        if (reason == 0)
            return result;
    } else {
        (MarkAsFailed(a), ...);
    }
    OnFailure(of, a...);
    if constexpr (std::is_arithmetic_v<Result>)
        if (call.where == InResult)
            return static_cast<Result>(reason);
    if (call.where == InWinsock)
        WSASetLastError(static_cast<int>(reason));
    else
        SetLastError(reason);
    return value;
}

template <class Of, Call& Which, auto& Real, auto Value>
struct Layer {
    template <class R, class... A>
    static R Run(A... a) {
        if constexpr (std::is_void_v<R>) {
            Judge(Which);
            Note(Which.book, true);
            return Real(a...);
        } else {
            return Through<Of>(Which, Real, (R)Value(), a...); // a pointer or a number
        }
    }
    template <class R, class... A>
    static R WINAPI In(A... a) {
        return Run<R>(a...);
    }
    template <class R, class... A>
    static constexpr auto As(std::type_identity<R(WINAPI*)(A...)>) -> R(WINAPI*)(A...) {
        return &In<R, A...>;
    }
#ifdef __i386__ // where functions of the cabinet library are called differently
    template <class R, class... A>
    static constexpr auto As(std::type_identity<R(DIAMONDAPI*)(A...)>) -> R(DIAMONDAPI*)(A...) {
        return &Run<R, A...>;
    }
#endif
};

template <class Of, Call& Which, class Interface, int Slot, class... A>
HRESULT STDMETHODCALLTYPE Method(void* object, A... a) {
    using Real = HRESULT(STDMETHODCALLTYPE*)(void*, A...);
    return Through<Of>(Which, reinterpret_cast<Real>(Methods<Interface>::theirs[Slot]), HRESULT{},
                       object, a...);
}

} // namespace

// The linker resolves references to an import, "__imp_X" or in 32 bits "__imp__X@8", as "__wrap_"
// and that name, and ours to "__real_" and that name as the import. Imports.h knows all the names.
// NOLINTBEGIN(*-reserved-identifier,*-identifier-naming): the linker's names
// NOLINTBEGIN(*-no-malloc,*-owning-memory): this is where memory comes from
#define LAYER(of, call, function, real, value)                                                     \
    Layer<struct of, call, real, [] { return (std::uintptr_t)(value); }>::As(                      \
        std::type_identity<decltype(&::function)>())
#define FAILS(name, book, where, value, ...)                                                       \
    Call call_##name({#name, book, where, {__VA_ARGS__}});                                         \
    extern decltype(&::name) real_##name __asm__(LEADING "__real_" IMPORT_##name);                 \
    extern decltype(&::name) wrap_##name __asm__(LEADING "__wrap_" IMPORT_##name);                 \
    decltype(&::name) wrap_##name = LAYER(Of_##name, call_##name, name, real_##name, value);
#define CLOSES(name, kind) FAILS(name, Closes(kind), InLastError, 0)
// A function that the program asks for by its name when it runs.
#define FAILS_LATE(name, book, where, value, ...)                                                  \
    decltype(&::name) late_##name = nullptr;                                                       \
    extern Call call_##name;                                                                       \
    Call call_##name(                                                                              \
        {#name,                                                                                    \
         book,                                                                                     \
         where,                                                                                    \
         {__VA_ARGS__},                                                                            \
         reinterpret_cast<void**>(&late_##name),                                                   \
         reinterpret_cast<void*>(LAYER(Of_##name, call_##name, name, late_##name, value))});
// A function that the program calls by its own name and not through an import.
#define FAILS_C(name, book, value)                                                                 \
    Call call_##name({#name, book, InLastError, {ERROR_NOT_ENOUGH_MEMORY}});
#define METHOD(interface, name, slot, ...)                                                         \
    Call call_##name({#interface "::" #name, 0, InResult, {E_FAIL}});                              \
    void* const method_##name = Methods<interface>::ours[slot] = reinterpret_cast<void*>(          \
        &Method<struct Of_##name, call_##name, interface, slot, __VA_ARGS__>);
#define KEEPS(why, ...)
#include "Calls.inc"
Call call_new({"operator new", 0, InLastError, {ERROR_NOT_ENOUGH_MEMORY}});

#define WRAP(result, name, value, parameters, ...)                                                 \
    extern "C" result __real_##name parameters;                                                    \
    extern "C" result __wrap_##name parameters {                                                   \
        return Through<struct Of_##name>(call_##name, __real_##name, static_cast<result>(value),   \
                                         __VA_ARGS__);                                             \
    }
WRAP(FILE*, fopen, nullptr, (const char* path, const char* mode), path, mode)
WRAP(std::size_t, fread, 0, (void* to, std::size_t size, std::size_t count, FILE* file), to, size,
     count, file)
WRAP(std::size_t, fwrite, 0, (const void* from, std::size_t size, std::size_t count, FILE* file),
     from, size, count, file)
WRAP(int, fflush, EOF, (FILE * file), file)
WRAP(int, fclose, EOF, (FILE * file), file)
WRAP(void*, malloc, nullptr, (std::size_t size), size)

/// GetProcAddress that gives the layer's function in place of the system's.
FARPROC WINAPI FindWithLayer(HMODULE module, LPCSTR name) {
    const FARPROC found = Through<struct Of_GetProcAddress>(
        call_GetProcAddress, real_GetProcAddress, FARPROC{nullptr}, module, name);
    for (const Call* const call : Call::All())
        if (found != nullptr && call->real != nullptr && call->Is(name)) {
            *call->real = reinterpret_cast<void*>(found);
            return reinterpret_cast<FARPROC>(call->ours);
        }
    return found;
}

void* operator new(std::size_t size) {
    void* const block = Judge(call_new, true) == 0 ? __real_malloc(size != 0 ? size : 1) : nullptr;
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

const char* TextIn(const char* variable) {
    const char* const text = std::getenv(variable);
    return text != nullptr ? text : "";
}

std::uint32_t NumberIn(const char* variable) {
    return static_cast<std::uint32_t>(std::strtoul(TextIn(variable), nullptr, 10));
}

void Begin() {
    for (const Call* const call : Call::All())
        if (call->Is(TextIn("VESK_FAIL_CALL")))
            chosen = call;
    chosenAt = NumberIn("VESK_FAIL_AT");
    chosenReason = NumberIn("VESK_FAIL_WITH");
    fromThenOn = NumberIn("VESK_FAIL_ON") != 0;
    tellsPlaces = NumberIn("VESK_FAIL_PLACES") != 0;
    lstrcpynA(shellFolder, TextIn("VESK_FAIL_SHELL"), MAX_PATH);
    wrap_GetProcAddress = &FindWithLayer;
}

void Tell() {
    FILE* const report = __real_fopen(TextIn("VESK_FAIL_REPORT"), "wb");
    if (report == nullptr)
        return;
    for (const Call* const call : Call::All()) {
        std::fprintf(report, "call\t%s\t%u", call->name, call->count);
        for (const std::int64_t reason : call->reasons)
            if (reason != 0)
                std::fprintf(report, "\t%lu", static_cast<DWORD>(reason));
        std::fprintf(report, "\n");
    }
    for (std::size_t i = 1; i < std::size(kKinds); ++i)
        std::fprintf(report, "open\t%s\t%d\n", kKinds[i].data(), open[i]);
    for (const Place& place : places)
        if (place.mark != 0)
            std::fprintf(report, "place\t%s\t%u\n", place.call, place.first);
    std::fprintf(report, "registry\t\t%llu\n", registry);
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
// NOLINTEND(*-no-malloc,*-owning-memory)
// NOLINTEND(*-reserved-identifier,*-identifier-naming)
