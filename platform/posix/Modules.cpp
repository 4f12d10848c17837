// Shared libraries on POSIX systems.
#include "platform/Modules.h"

#include <dlfcn.h>
#include <sys/auxv.h>

#include <cstdlib>
#include <memory>

namespace RynCommon::platform {

const char* const MODULE_EXTENSION = ".so";

namespace {

/// The address where the module that holds `address` is loaded; null when none does.
const void* getModuleStart(const void* address, const char*& path) {
    Dl_info info{};
    if (dladdr(address, &info) == 0) return nullptr;
    path = info.dli_fname;
    return info.dli_fbase;
}

std::string resolvePath(const char* path) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path, nullptr), &std::free);
    return resolved ? std::string(resolved.get()) : std::string();
}

bool isMainProgram(const void* moduleStart) {
    const char* path = nullptr;
    // The program's own headers lie inside its image.
    const auto* headers = reinterpret_cast<const void*>(getauxval(AT_PHDR));
    return headers != nullptr && getModuleStart(headers, path) == moduleStart;
}

}  // namespace

void* loadModule(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos) return nullptr;
    return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void* findSymbol(void* module, const char* name) {
    return module != nullptr && name != nullptr ? dlsym(module, name) : nullptr;
}

bool unloadModule(void* module) {
    return module != nullptr && dlclose(module) == 0;
}

std::string getModulePath(const void* address) {
    const char* path = nullptr;
    const void* const start = getModuleStart(address, path);
    if (start == nullptr) return {};
    // The loader knows a program only under the name that it was called by, which leads nowhere
    // once the working directory has changed.
    return resolvePath(isMainProgram(start) ? "/proc/self/exe" : path);
}

}  // namespace RynCommon::platform
