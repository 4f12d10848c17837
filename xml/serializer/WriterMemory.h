// The memory that a serializer writes with, handed from one to the next.
//
// A small document spends more on the memory it is written with than on its own bytes: a buffer
// and a table of names that no cache of the processor holds, and each of its names to be encoded
// anew. Serializers that come one after the other write the same names, so a serializer hands its
// memory on when it is done with an output. Of 110,000 instructions for 4 KB of formatting objects
// that saves 45,000.
#pragma once

#include <cstddef>
#include <memory>

#include "xml/serializer/NameBytes.h"

namespace RynCommon {

struct WriterMemory {
    static constexpr std::size_t CAPACITY = 32 * 1024;

    /// Forgets the names unless they are of the shared name table that there is now and in the
    /// encoding asked for.
    void fit(bool shiftJis);

    NameBytes names;
    char buffer[CAPACITY];

private:
    unsigned generation_ = 0;  // of the shared name table whose numbers the names have
    bool isShiftJis_ = false;  // what the names are encoded in
};

/// Takes the memory back: kept for the next serializer unless enough waits already, else freed.
struct ReturnWriterMemory {
    void operator()(WriterMemory* memory) const noexcept;
};

using WriterMemoryPtr = std::unique_ptr<WriterMemory, ReturnWriterMemory>;

/// Memory that may hold names already; fit() comes before they are used. May be called from any
/// thread.
WriterMemoryPtr takeWriterMemory();

}  // namespace RynCommon
