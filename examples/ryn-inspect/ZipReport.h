// A zip archive: its members, and the office package that it may be.
#pragma once

#include <istream>

#include "Extraction.h"

/// `in` can seek. False when the archive is damaged.
bool reportZip(std::istream& in);
bool extractMember(std::istream& in, const Extraction& extraction);
