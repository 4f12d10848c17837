// One document: loaded lazily, counted, saved, loaded again, compared.
#pragma once

#include <string>

struct InspectionOptions {
    bool defaultForm =
        false;  ///< save what only this library reads, instead of what every XML reader takes
};

/// Prints what there is to say about the document that `name`, a path or a URI in UTF-8, stands
/// for. False when it is broken, does not open, or comes back changed.
bool inspect(const std::string& name, const InspectionOptions& options);
