// Progress of archives that are fetched to reach into them.
#pragma once

#include <RynCommon/RyUri.h>

/// While it lives, what is downloaded on the way to `target` shows its progress. The target itself
/// does not: whoever reads it does.
class Downloads : public RynCommon::RyUriReferenceResolver {
public:
    explicit Downloads(const icu::UnicodeString& target);
    ~Downloads() override;
    Downloads(const Downloads&) = delete;
    Downloads& operator=(const Downloads&) = delete;

    std::istream* getStream(const icu::UnicodeString& uri,
                            icu::UnicodeString* contentType) override;

private:
    icu::UnicodeString target_;
    RynCommon::RyUriReferenceResolver* previous_;
};
