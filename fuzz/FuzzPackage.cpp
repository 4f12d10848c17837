// Fuzz target of the package layer. Every package has to be read to an end, without a word thrown,
// without anything asked for outside of it, and twice to the same result.
//
// The input is the parts that describe a package, with the byte 0x1E between them: content types,
// relationships of the package, those of its main part, application properties. They are members of
// an archive that also holds a few parts to be described.
#include <RynCommon/RyUri.h>
#include <RynCommon/RyZipFile.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <utility>

using namespace RynCommon;

namespace {

constexpr char SEPARATOR = '\x1E';
constexpr std::array DESCRIPTIONS = {"[Content_Types].xml", "_rels/.rels",
                                     "word/_rels/document.xml.rels", "docProps/app.xml"};
constexpr std::array PARTS = {"word/document.xml", "word/media/a b.png", "main.bin", "x.",
                              "caf\xC3\xA9.xml"};

[[noreturn]] void fail(const char* what, const std::string& detail) {
    std::fprintf(stderr, "%s: %s\n", what, detail.c_str());
    std::abort();
}

std::string utf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

/// No part of a package may make anything open.
class NothingOpens : public RyUriReferenceResolver {
public:
    std::istream* getStream(const UnicodeString& uri, UnicodeString*) override {
        fail("asked for", utf8(uri));
    }
};

void append16(std::string& out, std::size_t number) {
    out += static_cast<char>(number & 0xFF);
    out += static_cast<char>((number >> 8) & 0xFF);
}

void append32(std::string& out, std::size_t number) {
    append16(out, number & 0xFFFF);
    append16(out, number >> 16);
}

/// A stored member behind its local header; nothing here looks at its CRC.
void appendMember(std::string& out, const std::string& name, const std::string& data) {
    out += "PK\x03\x04";
    out.append(14, '\0');
    append32(out, data.size());
    append32(out, data.size());
    append16(out, name.size());
    append16(out, 0);
    out += name + data;
}

std::string makeArchive(const std::string& input) {
    std::string archive;
    std::size_t start = 0;
    for (const char* const name : DESCRIPTIONS) {
        const bool isLast = name == DESCRIPTIONS.back();
        const std::size_t end = isLast ? std::string::npos : input.find(SEPARATOR, start);
        appendMember(archive, name, input.substr(start, end - start));
        if (end == std::string::npos) break;
        start = end + 1;
    }
    for (const char* const name : PARTS) appendMember(archive, name, "");
    return archive;
}

/// All that the package says, as one text.
std::string describe(const std::string& bytes, bool strict) {
    RyZipFile archive;
    archive.setAcceptStrict(strict);
    archive.open(new std::istringstream(bytes), true);
    std::string text = std::to_string(archive.detectOOXDocument()) + "\n";
    RyZipFileEntry* const document = archive.getOfficeDocument();
    const UnicodeString type = archive.getContentType(document);
    if (type.isEmpty() && archive.detectOOXDocument() != RyZipFile::OOX_NONE)
        fail("a class without a content type", text);
    text += utf8(archive.getAppVersion()) + "\n";
    for (unsigned i = 0; i < archive.getFileEntryCount(); ++i) {
        RyZipFileEntry* const part = archive.getFileEntry(i);
        archive.getRelationshipTargetFromId(UnicodeString(), part);
        const auto& targets = part->getRelationshipsIdMap();
        if (targets.size() != part->getRelationshipsTargetMode().size())
            fail("targets and modes differ", utf8(part->getFileName()));
        for (const auto& [id, target] : targets) {
            if (archive.getRelationshipTargetFromId(id, part) != target)
                fail("another target than in the map", utf8(id));
            text += utf8(id) + " " + utf8(target) + " " +
                    utf8(archive.getRelationshipTargetMode(id, part)) + "\n";
        }
        text += utf8(part->getFileName()) + " " + utf8(archive.getContentType(part)) + "\n";
    }
    for (const auto& [kind, target] : archive.getRelationshipsTypeMap())
        text += utf8(kind) + " " + utf8(target) + "\n";
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static NothingOpens nothing;
    RyUriReferenceResolver* const previous = RyUri::setUriReferenceResolver(&nothing);
    const std::string archive = makeArchive(std::string(reinterpret_cast<const char*>(data), size));
    for (const bool strict : {false, true}) {
        const std::string first = describe(archive, strict);
        if (first != describe(archive, strict)) fail("another result the second time", first);
    }
    RyUri::setUriReferenceResolver(previous);
    return 0;
}
