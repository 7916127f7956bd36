#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace vesk {

/// Waits for others to let go of a file or folder. Scanners for viruses and indexers open for a
/// moment what was just written, and Explorer holds the folders that it shows: meanwhile the system
/// refuses to rename, replace or remove them.
///
/// Nobody knows beforehand whether a refusal passes. So the waits that came to nothing are counted,
/// and together take no more than kMostInVain and a tenth of the program's time, however many files
/// are refused for good; those that helped take what they take.
class clsPatience {
public:
    /// Milliseconds between two tries; for one call; for all that came to nothing.
    static constexpr std::uint32_t kStep = 50;
    static constexpr std::uint32_t kMostForOne = 1500;
    static constexpr std::uint32_t kMostInVain = 3000;

    /// @param now milliseconds since some moment @param wait waits for so many milliseconds
    clsPatience(std::function<std::uint32_t()> now, std::function<void(std::uint32_t)> wait);

    /// The one that the whole program shares, by the system's clock.
    static clsPatience& OfProgram();

    /// Repeats a call that others' open files may have refused, until it succeeds, fails for
    /// another reason, or enough was waited.
    /// @param call a function of the system: false, and the thread's last error, when it failed
    /// @return what the last call returned; the last error is that call's
    bool Try(const std::function<bool()>& call);

    /// Has something called after each step of waiting for as long as the object lives, so that a
    /// window stays alive; then what was called before is called again.
    class Meanwhile {
    public:
        /// @param meanwhile empty: nothing is called
        Meanwhile(clsPatience& patience, std::function<void()> meanwhile);
        Meanwhile(const Meanwhile&) = delete;
        Meanwhile& operator=(const Meanwhile&) = delete;
        ~Meanwhile();

    private:
        clsPatience& patience_;
        std::function<void()> before_;
    };

private:
    void Recover();

    std::function<std::uint32_t()> now_;
    std::function<void(std::uint32_t)> wait_;
    std::function<void()> meanwhile_;
    std::uint32_t left_ = kMostInVain;
    std::uint32_t recoveredAt_ = 0; ///< On the clock.
};

/// clsPatience::Try with the program's patience.
bool TryPatiently(const std::function<bool()>& call);

/// Waits until what was removed is gone: while another program has it open its name cannot be used,
/// and the folder above cannot be removed. Returns at once for what is there, or is not.
/// @param path as the system's functions take it
void AwaitRemoval(const std::wstring& path);

/// Creates a file or folder, also where one that was removed still has its name.
/// @param path as the system's functions take it
/// @param create the function of the system, as Try takes it @return as Try
bool CreatePatiently(const std::wstring& path, const std::function<bool()>& create);

} // namespace vesk
