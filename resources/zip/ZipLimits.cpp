// The limits of archives.
#include <RynCommon/RyZipFile.h>

#include <mutex>

#include "resources/zip/RyZipFileImpl.h"

namespace RynCommon {

namespace {

constinit std::mutex defaultsLock;
constinit RyZipLimits defaults;

}  // namespace

void RyZipFile::setDefaultLimits(const RyZipLimits& limits) {
    const std::lock_guard guard(defaultsLock);
    defaults = limits;
}

RyZipLimits RyZipFile::getDefaultLimits() {
    const std::lock_guard guard(defaultsLock);
    return defaults;
}

void RyZipFile::setLimits(const RyZipLimits& limits) {
    impl_->limits = limits;
}

const RyZipLimits& RyZipFile::getLimits() const {
    return impl_->limits;
}

}  // namespace RynCommon
