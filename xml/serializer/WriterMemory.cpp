// Memory of serializers between outputs; see the header.
#include "xml/serializer/WriterMemory.h"

#include <array>
#include <atomic>

#include "core/NameTable.h"
#include "text/Cleanup.h"

namespace RynCommon {

namespace {

/// As many serializers as commonly write at a time.
constexpr std::size_t MOST_WAITING = 4;

constinit std::array<std::atomic<WriterMemory*>, MOST_WAITING> waiting{};

void freeWaiting() {
    for (std::atomic<WriterMemory*>& place : waiting) delete place.exchange(nullptr);
}

constinit CleanupHook cleanupHook(freeWaiting);

}  // namespace

void WriterMemory::fit(bool shiftJis) {
    const unsigned generation = sharedNameGeneration();
    if (generation == generation_ && shiftJis == isShiftJis_) return;
    names.clear();
    generation_ = generation;
    isShiftJis_ = shiftJis;
}

void ReturnWriterMemory::operator()(WriterMemory* memory) const noexcept {
    std::unique_ptr<WriterMemory> owned(memory);
    if (memory == nullptr) return;
    cleanupHook.enrol();
    for (std::atomic<WriterMemory*>& place : waiting) {
        WriterMemory* none = nullptr;
        if (!place.compare_exchange_strong(none, memory)) continue;
        static_cast<void>(owned.release());
        return;
    }
}

WriterMemoryPtr takeWriterMemory() {
    for (std::atomic<WriterMemory*>& place : waiting) {
        if (place.load(std::memory_order_relaxed) == nullptr) continue;
        if (WriterMemory* const memory = place.exchange(nullptr)) return WriterMemoryPtr(memory);
    }
    return WriterMemoryPtr(std::make_unique_for_overwrite<WriterMemory>().release());
}

}  // namespace RynCommon
