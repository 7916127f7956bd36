#pragma once

namespace vesk {

/// Keeps the program's and the current folder out of every later search for a library: what is in
/// the folder of a downloaded program must not become a part of it. Where the system cannot do that
/// (before Windows 8 and updates of 7), only the current folder is left out. Call it first thing.
void LoadFromSystemOnly();

/// Sets what is done when a library that is loaded at the first call of one of its functions cannot
/// be loaded. That call cannot be undone: after the handler the program ends in any case.
/// @param handler is given the library's name; it may call kernel32 and the runtime only
void OnMissingLibrary(void (*handler)(const char* library));

/// Address of a function in a library that every process has loaded ("kernel32.dll"). Null when
/// this system has none.
void* FindLoadedFunction(const char* library, const char* function);

/// Address of a function in a library of the system's own folder ("version.dll"), which is loaded
/// and stays loaded. Null when there is none.
void* FindSystemFunction(const char* library, const char* function);

/// The same with the type of the function, that of a declared one if there is one:
/// SystemFunction<decltype(&F)>("x.dll", "F").
template <class Function>
Function LoadedFunction(const char* library, const char* function) {
    return reinterpret_cast<Function>(FindLoadedFunction(library, function));
}
template <class Function>
Function SystemFunction(const char* library, const char* function) {
    return reinterpret_cast<Function>(FindSystemFunction(library, function));
}

} // namespace vesk
