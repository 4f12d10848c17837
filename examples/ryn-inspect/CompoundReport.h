// A compound file: its measures, its storages and streams, its properties.
#pragma once

#include <istream>

#include "Extraction.h"

/// `in` can seek. False when the file is damaged.
bool reportCompoundFile(std::istream& in);
bool extractStream(std::istream& in, const Extraction& extraction);
