// The sectors of a chain, in order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace RynCommon::ole {

/// Holds runs of sectors that are neighbours in the file: writers place most of what belongs
/// together side by side, so a chain of a hundred thousand sectors is often a single run, and a run
/// is what is read with one call.
class SectorChain {
public:
    struct Run {
        std::int32_t first = 0;
        std::size_t count = 0;
        std::size_t start = 0;  ///< index of its first sector in the chain
    };

    void append(std::int32_t first, std::size_t count);
    void clear();

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    const std::vector<Run>& getRuns() const { return runs_; }
    /// The run that holds the sector at `index`; null at the end and beyond.
    const Run* find(std::size_t index) const;
    /// The sector at `index`; -1 at the end and beyond.
    std::int32_t at(std::size_t index) const;

private:
    std::vector<Run> runs_;
    std::size_t size_ = 0;
    mutable std::size_t last_ = 0;  ///< the run found last, where the next search begins
};

}  // namespace RynCommon::ole
