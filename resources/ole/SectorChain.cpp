// The sectors of a chain, in order.
#include "resources/ole/SectorChain.h"

#include <algorithm>

namespace RynCommon::ole {

void SectorChain::append(std::int32_t first, std::size_t count) {
    if (count == 0) return;
    Run* const last = runs_.empty() ? nullptr : &runs_.back();
    if (last != nullptr && static_cast<std::int64_t>(last->count) + last->first == first) {
        last->count += count;
    } else {
        runs_.push_back({first, count, size_});
    }
    size_ += count;
}

void SectorChain::clear() {
    runs_.clear();
    size_ = 0;
    last_ = 0;
}

/// Reading goes forwards, so the run found last and the one behind it are looked at first.
const SectorChain::Run* SectorChain::find(std::size_t index) const {
    if (index >= size_) return nullptr;
    const auto holds = [index](const Run& run) {
        return index >= run.start && index - run.start < run.count;
    };
    for (std::size_t i = last_; i < std::min(last_ + 2, runs_.size()); ++i) {
        if (holds(runs_[i])) return &runs_[last_ = i];
    }
    const auto after =
        std::upper_bound(runs_.begin(), runs_.end(), index,
                         [](std::size_t wanted, const Run& run) { return wanted < run.start; });
    last_ = static_cast<std::size_t>(after - runs_.begin()) - 1;
    return &runs_[last_];
}

std::int32_t SectorChain::at(std::size_t index) const {
    const Run* const run = find(index);
    return run == nullptr ? -1 : run->first + static_cast<std::int32_t>(index - run->start);
}

}  // namespace RynCommon::ole
