// An office package: class, main part, content types, relationships.
#pragma once

#include <RynCommon/RyZipFile.h>

/// Whether the archive describes itself as a package.
bool isPackage(const RynCommon::RyZipFile& archive);
void reportPackage(RynCommon::RyZipFile& archive);
