// Reading the XML parts of a package.
//
// Parts come from anywhere, and reading one must neither reach out of the package nor cost more
// than its size justifies. The standard allows no DTD in them (ECMA-376-2, 8.1.4); one that stands
// there nevertheless is read past as far as that is safe:
//
// - The external subset is never read.
// - Up to the end of the DOCTYPE no entity may be opened at all, so that a parameter entity ends
//   the reading.
// - Behind it, references in content come as events and are not followed; an attribute value never
//   follows an external entity. Internal entities in values are expanded up to a small limit.
// - Attributes that a DTD supplies can be many for few bytes, and a well-chosen member inflates to
//   a thousand times its size: both, attributes and bytes, are counted.
#include "resources/zip/PartReader.h"
#include "core/ErrorLocations.h"
#include "core/MemoryCheck.h"

#include <RynCommon/RyXmlParser.h>
#include <RynCommon/RyXmlUtil.h>
#include <RynCommon/RyZipFile.h>

#include <algorithm>
#include <array>
#include <istream>
#include <streambuf>

namespace RynCommon::zip {

namespace {

/// The first bytes of another buffer.
class BoundedBuf : public std::streambuf {
public:
    BoundedBuf(std::streambuf& source, std::uint64_t limit) : source_(source), left_(limit) {}

protected:
    int_type underflow() override {
        const auto wanted =
            static_cast<std::streamsize>(std::min<std::uint64_t>(left_, buffer_.size()));
        const std::streamsize count = wanted > 0 ? source_.sgetn(buffer_.data(), wanted) : 0;
        if (count <= 0) return traits_type::eof();
        left_ -= static_cast<std::uint64_t>(count);
        setg(buffer_.data(), buffer_.data(), buffer_.data() + count);
        return traits_type::to_int_type(buffer_[0]);
    }

private:
    std::streambuf& source_;
    std::uint64_t left_;
    std::array<char, 16384> buffer_;
};

RyXmlLimits limitsWith(std::uint32_t nestedInputs) {
    RyXmlLimits limits;
    limits.expansionThreshold = 65'536;
    limits.expansionFactor = 10;
    limits.nestedInputs = nestedInputs;
    return limits;
}

/// The limits allow any numbers: what overflows is no limit.
std::uint64_t bytesOf(const RyZipLimits& limits, std::uint64_t compressedSize) {
    std::uint64_t bytes = 0;
    const bool overflows =
        __builtin_mul_overflow(std::uint64_t{limits.partInflation}, compressedSize, &bytes) ||
        __builtin_add_overflow(bytes, limits.partBytes, &bytes);
    return overflows ? RyZipLimits::UNLIMITED : bytes;
}

void visitAll(RyXmlParser& parser, std::uint64_t mostAttributes, const ElementVisitor& visit) {
    std::uint64_t attributes = 0;
    for (;;) {
        switch (parser.nextToken()) {
            case RyXmlParser::DOCDECL:
                parser.setLimits(limitsWith(16));
                break;
            case RyXmlParser::START_TAG:
                attributes += static_cast<std::uint64_t>(parser.getAttributeCount());
                if (attributes > mostAttributes || !visit(parser)) return;
                break;
            case RyXmlParser::END_DOCUMENT:
                return;
            default:
                break;
        }
    }
}

}  // namespace

void readElements(RyZipFileEntry& part, const RyZipLimits& limits, const ElementVisitor& visit) {
    std::istream* const data = part.getUncompressedStream(false);
    if (data == nullptr) return;
    BoundedBuf buffer(*data->rdbuf(), bytesOf(limits, part.getCompressedSize()));
    std::istream in(&buffer);
    try {
        const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
        parser->setFeature(RyXmlParser::NO_EXTERNAL_DTD, true);
        parser->setLimits(limitsWith(0));
        parser->setInput(in, UnicodeString(), UnicodeString());
        visitAll(*parser, limits.partAttributes, visit);
    } catch (const RyError& error) {
        // What was visited is what the part has to say.
        if (error.getErrorCode() == SYSTEM_OUT_OF_MEMORY) throw;
    }
}

UnicodeString readText(RyXmlParser& parser) {
    parser.setLimits(limitsWith(0));
    UnicodeString text;
    const int depth = parser.getDepth();
    for (;;) {
        const RyXmlParser::EventType event = parser.next();
        if (event == RyXmlParser::TEXT) requireWhole(text += parser.getText());
        const bool ends = event == RyXmlParser::END_TAG && parser.getDepth() == depth;
        if (ends || event == RyXmlParser::END_DOCUMENT) return text;
    }
}

}  // namespace RynCommon::zip
