// What a compound file holds while it is open.
#pragma once

#include <RynCommon/OleCompFile.h>

#include <memory>

#include "resources/ole/OleDirectory.h"
#include "resources/ole/OleHeader.h"
#include "resources/ole/SectorChain.h"
#include "resources/ole/SectorReader.h"
#include "resources/ole/SectorTables.h"

namespace RynCommon {

struct OleCompFile::Impl {
    /// Back to the closed state. The reader and the limits stay.
    void clear();
    /// The sectors of the mini stream, found when the first mini stream opens; empty when it has
    /// none, or its chain returns to itself or is too long.
    const ole::SectorChain& getMiniStream();

    /// Set when the reader is the file's own.
    std::unique_ptr<JZIOobj> owned;
    JZIOobj* io = nullptr;
    /// Names that are not found are not reported.
    bool quiet = false;
    OleLimits limits;

    ole::OleHeader header;
    ole::SectorReader reader;
    ole::SectorTables tables;
    ole::OleDirectory directory;
    ole::SectorChain miniStream;
    bool miniStreamKnown = false;
};

}  // namespace RynCommon
