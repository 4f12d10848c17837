// What a tree consists of.
#pragma once

#include <RynCommon/RyNode.h>

#include <cstdint>

struct TreeFacts {
    std::uint64_t elements = 0;
    std::uint64_t attributes = 0;
    std::uint64_t texts = 0;
    std::uint64_t characters = 0;  ///< UTF-16 units of all texts
    std::uint64_t depth = 0;       ///< elements within one another

    // Attribute values by what their text is as a property value.
    std::uint64_t lengths = 0;
    std::uint64_t percentages = 0;
    std::uint64_t otherNumbers = 0;
    std::uint64_t colors = 0;
    std::uint64_t names = 0;
    std::uint64_t otherTexts = 0;  ///< quoted, or of no single value
};

/// Counts what is there below `root`; a tree that is still loading is not loaded any further.
TreeFacts countTree(const RynCommon::RyNode& root);
