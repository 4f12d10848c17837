// Copying one member or stream into a file.
#pragma once

#include <istream>
#include <string>

/// Copies `in`, read from where it stands, into the file `target`, with a progress line, and prints
/// how it went. False when the file cannot be written or `in` turns bad.
bool copyOut(std::istream& in, const std::string& target);
