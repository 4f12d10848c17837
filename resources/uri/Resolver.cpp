// The application's hook for streams.
#include <RynCommon/RyUri.h>

#include <atomic>

namespace RynCommon {

namespace {

constinit std::atomic<RyUriReferenceResolver*> installedResolver = nullptr;

}  // namespace

RyUriReferenceResolver::~RyUriReferenceResolver() = default;

RyUriReferenceResolver* RyUri::setUriReferenceResolver(RyUriReferenceResolver* resolver) {
    return installedResolver.exchange(resolver);
}

RyUriReferenceResolver* RyUri::getUriReferenceResolver() {
    return installedResolver.load(std::memory_order_acquire);
}

}  // namespace RynCommon
