// The choice between the forms of a set of vector kernels, made once.
#pragma once

#include <atomic>
#include <cstdlib>

namespace RynCommon {

/// Whether the environment asks for the scalar twins.
inline bool wantsScalarKernels() noexcept {
    return std::getenv("RYNCOMMON_SCALAR") != nullptr;
}

/// The table of kernels that SELECT makes at the first call, which may come from any thread and
/// from static initialisers. From then on a call costs a load and a test.
template <class Kernels, Kernels (*SELECT)() noexcept>
class KernelChoice {
public:
    static const Kernels& get() noexcept {
        const Kernels* const chosen = chosen_.load(std::memory_order_acquire);
        if (chosen != nullptr) [[likely]]
            return *chosen;
        return choose();
    }

private:
    [[gnu::noinline, gnu::cold]] static const Kernels& choose() noexcept {
        static const Kernels kernels = SELECT();
        chosen_.store(&kernels, std::memory_order_release);
        return kernels;
    }

    static constinit inline std::atomic<const Kernels*> chosen_{nullptr};
};

}  // namespace RynCommon
