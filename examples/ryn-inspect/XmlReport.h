// An XML document: loaded lazily, counted, saved, loaded again, compared.
#pragma once

#include "Input.h"
#include "Inspection.h"

/// False when the document comes back changed. Errors of the document are thrown.
bool reportXml(Input& input, const InspectionOptions& options);
