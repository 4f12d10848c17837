// Memory of serializers between outputs; see the header.
#include "xml/serializer/WriterMemory.h"

#include "core/NameTable.h"
#include "text/HandOver.h"

namespace RynCommon {

void WriterMemory::fit(bool shiftJis) {
    const unsigned generation = sharedNameGeneration();
    if (generation == generation_ && shiftJis == isShiftJis_) return;
    names.clear();
    generation_ = generation;
    isShiftJis_ = shiftJis;
}

void ReturnWriterMemory::operator()(WriterMemory* memory) const noexcept {
    if (memory != nullptr) HandOver<WriterMemory>::give(std::unique_ptr<WriterMemory>(memory));
}

WriterMemoryPtr takeWriterMemory() {
    std::unique_ptr<WriterMemory> memory = HandOver<WriterMemory>::take();
    if (memory == nullptr) memory = std::make_unique_for_overwrite<WriterMemory>();
    return WriterMemoryPtr(memory.release());
}

}  // namespace RynCommon
