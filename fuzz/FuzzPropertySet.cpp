// Fuzz target of property sets: the input is the property set stream of a sound compound file.
// Whatever it says, reading it ends, takes no more memory than the stream allows, and gives a value
// exactly when it says so.
#include <RynCommon/OleCompFile.h>
#include <RynCommon/OleSummaryInformation.h>
#include <RynCommon/RyValue.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "tests/resources/OleWriter.h"

using namespace RynCommon;

namespace {

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

void check(OleCompFile& file, std::size_t size) {
    OleSummaryInformation information;
    const int result = information.initDocumentSummaryInformation(&file);
    require(result == 1 || result == -1, "result");
    for (unsigned long id = 0; id < 64; ++id) {
        RyValue any;
        const int served = information.getPropertyAny(id, any);
        require(served >= -1 && served <= 1 && (served == 1) == !any.isNull(), "any");
        require(any.toString().length() <= static_cast<std::int32_t>(size) + 40, "long text");
        RyValue basic;
        const int answered = information.getProperty(id, basic);
        require(answered <= served || served == -1, "the small range serves more");
        require((answered == 1) == !basic.isNull(), "basic");
        if (answered == 1) require(basic.toString() == any.toString(), "ranges differ");
    }
    std::vector<UnicodeString> links;
    const int count = information.getHyperLinks(links);
    require(static_cast<int>(links.size()) == std::max(count, 0), "links");
    std::size_t units = 0;
    for (const UnicodeString& link : links) units += static_cast<std::size_t>(link.length());
    require(units <= size, "long links");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::OleWriter writer;
    writer.addStream(0, u"\u0005DocumentSummaryInformation",
                     std::string(reinterpret_cast<const char*>(data), size));
    std::istringstream stream(writer.write().bytes());
    JZStreamIOobj io(stream);
    OleCompFile file;
    require(file.OLEopen(&io), "a sound file does not open");
    check(file, size);
    return 0;
}
