// An XML document: loaded lazily, counted, saved, loaded again, compared.
#pragma once

#include "Input.h"

struct XmlReportOptions {
    /// Save what only this library reads, instead of what every XML reader takes.
    bool defaultForm = false;
};

/// False when the document comes back changed. Errors of the document are thrown.
bool reportXml(Input& input, const XmlReportOptions& options);
