// Copying one member or stream into a file.
#pragma once

#include <istream>
#include <string>

/// One member of a zip archive, or stream of a compound file, that is copied out.
struct Extraction {
    std::string member;  ///< name, or path of names with "/" between them; as the reports show them
    std::string target;  ///< the file to write
};

/// Copies `in`, read from where it stands, into the file `target`, with a progress line, and prints
/// how it went. False when the file cannot be written or `in` turns bad.
bool copyOut(std::istream& in, const std::string& target);
