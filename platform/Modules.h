// Shared libraries loaded at run time.
#pragma once

#include <string>

namespace RynCommon::platform {

/// What the names of loadable modules end in, with its dot.
extern const char* const MODULE_EXTENSION;

/// Loads a shared library; a path without a slash is searched for as the system does. Null when it
/// does not load.
void* loadModule(const std::string& path);

/// The address of a symbol of a loaded library, or null.
void* findSymbol(void* module, const char* name);

/// Gives a loaded library back; false when the system refuses.
bool unloadModule(void* module);

/// The absolute path of the library or program that `address` belongs to; empty when it is unknown.
std::string getModulePath(const void* address);

}  // namespace RynCommon::platform
