// Fuzz target of loading and saving. A document that was loaded, as far as it goes, is saved, and
// loads again as the same tree, which is saved byte for byte alike; what is saved to be read by any
// reader is read so by expat; and a document that both readers take is the same tree to both.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyNodeIterator.h>

#include <algorithm>
#include <optional>
#include <sstream>

#include "core/ErrorLocations.h"
#include "fuzz/ExpatTree.h"
#include "fuzz/Require.h"
#include "fuzz/TreeText.h"
#include "fuzz/XmlInput.h"

using namespace RynCommon;

namespace {

/// Our parser knows the versions 1.0 and 1.1 only, and wants white space behind the target of every
/// processing instruction.
constexpr std::string_view REFUSED_ON_PURPOSE[] = {"6182 ", "6188 "};

bool isRefusedOnPurpose(std::string_view error) {
    for (const std::string_view code : REFUSED_ON_PURPOSE)
        if (error.starts_with(code)) return true;
    return false;
}

/// Without a mark, XML 1.0 (appendix F) knows UTF-16 by a "<" at the start. Expat takes any zero
/// byte among the first two for it.
bool isGuessedByExpat(std::string_view bytes) {
    if (bytes.size() < 2 || (bytes[0] != '\0' && bytes[1] != '\0')) return false;
    return bytes[0] != '<' && bytes[1] != '<';
}

struct Loaded {
    explicit Loaded(const XmlInput& input) : document(new RyDocument) {
        std::istringstream in(input.bytes);
        RyXmlParser& parser = *document->getParser();
        prepareParser(parser, input.features);
        try {
            parser.setInput(in, input.encoding, UnicodeString(FUZZ_BASE));
            document->load();
        } catch (const RyError& e) {
            error = errorText(e);
        }
    }
    explicit Loaded(const std::string& bytes) : Loaded(XmlInput(bytes)) {}

    RyPtr<RyDocument> document;
    std::string error;
};

std::optional<std::string> save(RyDocument& document, const UnicodeString& encoding) {
    std::ostringstream out;
    document.getSerializer()->setConformant(true);
    try {
        document.save(out, nullptr, encoding);
    } catch (const RyError& error) {
        require(error.getErrorCode() == SYSTEM_NOT_WELL_FORMED, "saving fails", errorText(error));
        return std::nullopt;
    }
    return out.str();
}

/// Whether the form that drops characters, and leaves line ends as they are, keeps all of `text`.
bool isPlain(const std::string& text) {
    for (const char c : text)
        if (static_cast<unsigned char>(c) < 0x20 && c != '\n') return false;
    return text.find("\xC2\x85") == std::string::npos &&
           text.find("\xE2\x80\xA8") == std::string::npos;
}

bool hasPlainAttributes(RyDocument& document) {
    const RyPtr<RyNodeList> nodes = document.getDescendantNodes();
    for (int i = 0; i < nodes->getLength(); ++i) {
        if (nodes->item(i)->getNodeType() != RyNode::ELEMENT_NODE) continue;
        for (const RyAttr* attr = static_cast<RyElement*>(nodes->item(i))->getFirstAttribute();
             attr != nullptr; attr = attr->getNextAttribute())
            if (attr->getText().indexOf(u'\n') >= 0) return false;
    }
    return true;
}

/// Whether there may be names that only later editions of XML 1.0 than expat's allow: characters
/// beyond ASCII in markup, values in quotes left out.
bool hasWideNames(const std::string& saved) {
    bool isMarkup = false;
    bool isValue = false;
    for (const char c : saved) {
        if (c == '<') isMarkup = true;
        if (c == '"') isValue = isMarkup && !isValue;
        if (c == '>' && !isValue) isMarkup = false;
        if (isMarkup && !isValue && (c & 0x80) != 0) return true;
    }
    return false;
}

/// Returns whether the document can be written.
bool checkSaving(RyDocument& document, const std::string& content, const UnicodeString& encoding) {
    const std::optional<std::string> saved = save(document, encoding);
    if (!saved) return false;
    Loaded again(*saved);
    requireEqual("what was saved does not load", again.error, "");
    requireEqual("another tree is loaded than was saved", content,
                 describeContent(*again.document));
    const std::optional<std::string> savedAgain = save(*again.document, encoding);
    require(savedAgain.has_value(), "what was loaded is not saved again", *saved);
    requireEqual("saved otherwise the second time", *saved, *savedAgain);
    if (encoding != u"UTF-8") return true;
    const ExpatTree expat(*saved);
    if (!expat.accepted && hasWideNames(*saved)) return true;
    require(expat.accepted, "expat does not read what was saved", *saved, expat.error);
    requireEqual("expat reads another tree", content, expat.content);
    return true;
}

/// The way over a string instead of bytes.
void checkText(RyDocument& document, const std::string& content) {
    const RyPtr<RyDocument> again(new RyDocument);
    try {
        again->loadXml(document.saveXml());
    } catch (const RyError& error) {
        fail("a saved text does not load", errorText(error), content);
    }
    requireEqual("another tree is loaded than was saved as a text", content,
                 describeContent(*again));
}

void checkPlainSaving(RyDocument& document, const std::string& content) {
    if (!isPlain(content) || !hasPlainAttributes(document)) return;
    document.setSerializer(nullptr);
    std::ostringstream out;
    document.save(out, nullptr, u"UTF-8");
    Loaded again(out.str());
    requireEqual("what was saved plainly does not load", again.error, "");
    requireEqual("another tree is loaded than was saved plainly", content,
                 describeContent(*again.document));
    checkText(document, content);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const XmlInput input(data, size);
    const Loaded loaded(input);
    const std::string content = describeContent(*loaded.document);
    bool isWritable = false;
    if (loaded.document->getDocumentElement() != nullptr) {
        isWritable = checkSaving(*loaded.document, content, u"UTF-8");
        if (isWritable) {
            checkText(*loaded.document, content);
            checkPlainSaving(*loaded.document, content);
        }
        checkSaving(*loaded.document, content, u"SHIFT_JIS");
    }
    if (!input.encoding.isEmpty()) return 0;
    const ExpatTree expat(input.bytes);
    if (!expat.accepted || expat.differs) return 0;
    if (isRefusedOnPurpose(loaded.error) || isGuessedByExpat(input.bytes)) return 0;
    requireEqual("expat takes what we refuse", loaded.error, "");
    requireEqual("expat reads another tree than we", expat.content, content);
    require(isWritable, "a good document is not written", content);
    return 0;
}
