#pragma once

namespace vesk {

/// Keeps the program's and the current folder out of every later search for a library: what lies
/// beside a downloaded program must not become a part of it. To be called first thing.
void LoadFromSystemOnly();

/// Address of a function in a library of the system's own folder ("version.dll"), which is loaded
/// and stays loaded. Null when there is none.
void* FindSystemFunction(const char* library, const char* function);

/// The same with the type of a function that is declared: SystemFunction<decltype(&F)>("x.dll",
/// "F").
template <class Function>
Function SystemFunction(const char* library, const char* function) {
    return reinterpret_cast<Function>(FindSystemFunction(library, function));
}

} // namespace vesk
