#pragma once

#include "archive/CabDirectory.h"
#include "archive/clsByteWindow.h"
#include "archive/clsCab.h"
#include "archive/clsFileSource.h"

#include <exception>
#include <memory>
#include <string>

namespace vesk {

/// Ends an iteration whose owner threw or is gone. Not a std::exception, so that it is not caught
/// as the failure of a member.
struct CabStopped {};

/// One pass over a cabinet, whatever it is for. It works on copies of the cabinet object's
/// settings, which an event may change or destroy. There is one at a time.
class clsCabIteration {
public:
    /// Takes the turn. @throws Failure without a cabinet's name, or when it is another one's turn
    clsCabIteration(const clsCab& cab, std::weak_ptr<CabEvents*> owner);
    clsCabIteration(const clsCabIteration&) = delete;
    clsCabIteration& operator=(const clsCabIteration&) = delete;
    ~clsCabIteration();

    /// Path of the cabinet, and of the target folder: empty for the cabinet's own.
    [[nodiscard]] const std::string& CabName() const { return cabName_; }
    [[nodiscard]] const std::string& Destination() const { return destination_; }

    /// The cabinet's headers. @throws Failure with the source "CabFile"
    CabDirectory ReadDirectory();

    /// The cabinet's bytes; there after ReadDirectory.
    clsByteWindow& Cabinet() { return *window_; }

    /// Whether all members are wanted, of a cabinet without any, too.
    [[nodiscard]] bool WantsAll() const { return wanted_.empty(); }

    /// True for a member that is wanted.
    [[nodiscard]] bool Matches(const CabEntry& entry) const;

    /// Raises one event. @throws CabStopped when the owner threw or is gone afterwards
    template <class Event>
    void Raise(Event event) {
        if (CabEvents* const owner = owner_.expired() ? nullptr : *owner_.lock()) {
            try {
                event(*owner);
            } catch (...) {
                thrown_ = std::current_exception();
            }
        }
        if (thrown_ || owner_.expired())
            throw CabStopped();
    }

    /// Does the work, and throws again what the owner threw in it.
    template <class Work>
    void Run(Work work) {
        try {
            work();
        } catch (const CabStopped&) {
        }
        if (thrown_)
            std::rethrow_exception(thrown_);
    }

private:
    static bool busy_;

    std::string cabName_;
    std::wstring wanted_; ///< Folded; empty for all.
    std::string destination_;
    std::weak_ptr<CabEvents*> owner_;
    std::unique_ptr<clsFileSource> source_;
    std::unique_ptr<clsByteWindow> window_;
    std::exception_ptr thrown_; ///< By an event.
};

} // namespace vesk
