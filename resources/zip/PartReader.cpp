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

#include <RynCommon/RyXmlParser.h>
#include <RynCommon/RyXmlUtil.h>
#include <RynCommon/RyZipFile.h>

#include <algorithm>
#include <array>
#include <exception>
#include <istream>
#include <streambuf>

namespace RynCommon::zip {

namespace {

/// Bytes of a part that are read in any case, and for each compressed byte: far more than parts
/// need, which compress to a tenth.
constexpr std::uint64_t FREE_BYTES = 4u << 20;
constexpr std::uint64_t MOST_INFLATION = 64;
/// Attributes of all elements together: a million relationships.
constexpr int MOST_ATTRIBUTES = 4'000'000;

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

void visitAll(RyXmlParser& parser, const ElementVisitor& visit) {
    int attributes = 0;
    for (;;) {
        switch (parser.nextToken()) {
            case RyXmlParser::DOCDECL:
                parser.setLimits(limitsWith(16));
                break;
            case RyXmlParser::START_TAG:
                attributes += parser.getAttributeCount();
                if (attributes > MOST_ATTRIBUTES || !visit(parser)) return;
                break;
            case RyXmlParser::END_DOCUMENT:
                return;
            default:
                break;
        }
    }
}

}  // namespace

void readElements(RyZipFileEntry& part, const ElementVisitor& visit) {
    std::istream* const data = part.getUncompressedStream(false);
    if (data == nullptr) return;
    BoundedBuf buffer(*data->rdbuf(), FREE_BYTES + MOST_INFLATION * part.getCompressedSize());
    std::istream in(&buffer);
    try {
        const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
        parser->setFeature(RyXmlParser::NO_EXTERNAL_DTD, true);
        parser->setLimits(limitsWith(0));
        parser->setInput(in, UnicodeString(), UnicodeString());
        visitAll(*parser, visit);
    } catch (const RyError&) {
        // What was visited is what the part has to say.
    } catch (const std::exception&) {
        // Likewise, where memory ran out.
    }
}

UnicodeString readText(RyXmlParser& parser) {
    parser.setLimits(limitsWith(0));
    UnicodeString text;
    const int depth = parser.getDepth();
    for (;;) {
        const RyXmlParser::EventType event = parser.next();
        if (event == RyXmlParser::TEXT) text += parser.getText();
        const bool ends = event == RyXmlParser::END_TAG && parser.getDepth() == depth;
        if (ends || event == RyXmlParser::END_DOCUMENT) return text;
    }
}

}  // namespace RynCommon::zip
