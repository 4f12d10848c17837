// The report of any resource: finds out what it is, and hands it to the report for that.
#pragma once

#include <string>

#include "Extraction.h"
#include "XmlReport.h"

/// Prints what there is to say about the resource that `name`, a path or a URI in UTF-8, stands
/// for; with an extraction, copies out instead. False when it is broken, does not open, or comes
/// back changed.
bool reportResource(const std::string& name, const XmlReportOptions& options,
                    const Extraction* extraction = nullptr);
