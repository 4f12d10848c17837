// What ryn-inspect does with one resource: telling what it is, and handing it to the report for it.
#pragma once

#include <string>

struct InspectionOptions {
    bool defaultForm =
        false;  ///< save what only this library reads, instead of what every XML reader takes
};

/// One member of a zip archive, or stream of a compound file, that is copied out.
struct Extraction {
    std::string member;  ///< name, or path of names with "/" between them; as the reports show them
    std::string target;  ///< the file to write
};

/// Prints what there is to say about the resource that `name`, a path or a URI in UTF-8, stands
/// for; with an extraction, copies out instead. False when it is broken, does not open, or comes
/// back changed.
bool inspect(const std::string& name, const InspectionOptions& options,
             const Extraction* extraction = nullptr);
