// Fails chosen allocations of this program, and counts those that are alive.
//
// An ordinary build replaces the C allocator, which serves operator new, ICU, zlib and the
// exceptions themselves. Sanitizers keep theirs; there operator new and ICU's memory functions are
// replaced instead.
#pragma once

namespace allocation {

enum class Mode {
    ONCE,    ///< only the chosen allocation fails
    FROM_ON  ///< memory stays exhausted
};

/// Has the allocation number `n` of this thread, counted from now and from 1, fail.
void arm(long n, Mode mode);
/// Ends that; whether an allocation failed.
bool disarm();
/// Allocations that have not been freed yet.
long countLive();
/// Has ICU take its memory from here where that needs saying. Before anything of ICU is used.
void prepare();

/// Allocations of the test itself succeed, and do not count, while one lives.
class Pause {
public:
    Pause();
    ~Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

private:
    bool previous_;
};

}  // namespace allocation
