// The storages of a compound file as a list in which each entry knows its path.
#pragma once

#include <RynCommon/OleCompFile.h>

#include <cstdint>
#include <string>
#include <vector>

struct StorageEntry {
    std::int32_t id = 0;
    std::size_t depth = 0;  ///< 0 for what lies in the root
    std::string name;       ///< UTF-8, control characters as "\x05"
    std::string path;       ///< names from the root on, with "/" between them
};

/// Everything below the root that can be reached, storages before what they hold, each entry once
/// whatever a damaged directory says.
std::vector<StorageEntry> listStorages(const RynCommon::OleCompFile& file);
