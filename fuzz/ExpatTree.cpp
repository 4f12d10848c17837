// Reads documents with expat.
#include "fuzz/ExpatTree.h"

#include <expat.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

#include "fuzz/TreeText.h"

namespace RynCommon {

namespace {

/// No character of XML, so that it stands in no name.
constexpr char SEPARATOR = '\x01';

struct Closer {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

/// Turns expat's "uri local prefix", whose first and last part may lack, to the name's description.
std::string nameOf(std::string_view triplet) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t end = triplet.find(SEPARATOR);
        parts.emplace_back(triplet.substr(0, end));
        if (end == std::string_view::npos) break;
        triplet.remove_prefix(end + 1);
    }
    if (parts.size() == 1) return describeName("", "", parts[0]);
    return describeName(parts[0], parts.size() > 2 ? parts[2] : "", parts[1]);
}

/// U+0085 and U+2028 are characters to expat.
bool hasOtherLineEnds(std::string_view text) {
    return text.find("\xC2\x85") != std::string_view::npos ||
           text.find("\xE2\x80\xA8") != std::string_view::npos;
}

class Builder {
public:
    explicit Builder(ExpatTree& tree) : tree_(tree) {}

    void install(XML_Parser parser) {
        XML_SetUserData(parser, this);
        XML_SetReturnNSTriplet(parser, 1);
        XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_ALWAYS);
        XML_SetElementHandler(parser, &Builder::start, &Builder::end);
        XML_SetCharacterDataHandler(parser, &Builder::text);
        XML_SetStartDoctypeDeclHandler(parser, &Builder::doctype);
        XML_SetSkippedEntityHandler(parser, &Builder::skipped);
        XML_SetExternalEntityRefHandler(parser, &Builder::external);
    }

private:
    static Builder& self(void* user) { return *static_cast<Builder*>(user); }

    void flush() {
        if (!text_.empty()) tree_.content += "\"" + text_ + "\n";
        text_.clear();
    }

    static void start(void* user, const XML_Char* name, const XML_Char** attributes) {
        Builder& builder = self(user);
        builder.flush();
        const std::string description = nameOf(name);
        if (builder.tree_.content.empty() &&
            (description.ends_with("svg") || description.ends_with("chart")))
            builder.tree_.differs = true;
        std::vector<std::string> lines;
        for (; *attributes != nullptr; attributes += 2)
            lines.push_back("@" + nameOf(attributes[0]) + "=" + attributes[1] + "\n");
        std::sort(lines.begin(), lines.end());
        builder.tree_.content += "<" + description + "\n";
        for (const std::string& line : lines) builder.tree_.content += line;
    }
    static void end(void* user, const XML_Char*) {
        self(user).flush();
        self(user).tree_.content += ">\n";
    }
    static void text(void* user, const XML_Char* text, int length) {
        self(user).text_.append(text, static_cast<std::size_t>(length));
    }
    static void doctype(void* user, const XML_Char*, const XML_Char* systemId,
                        const XML_Char* publicId, int) {
        if (systemId != nullptr || publicId != nullptr) self(user).tree_.differs = true;
    }
    static void skipped(void* user, const XML_Char*, int) { self(user).tree_.differs = true; }
    static int external(XML_Parser parser, const XML_Char*, const XML_Char*, const XML_Char*,
                        const XML_Char*) {
        self(XML_GetUserData(parser)).tree_.differs = true;
        return XML_STATUS_OK;
    }

    ExpatTree& tree_;
    std::string text_;
};

}  // namespace

ExpatTree::ExpatTree(const std::string& bytes) {
    const std::unique_ptr<XML_ParserStruct, Closer> parser(XML_ParserCreateNS(nullptr, SEPARATOR));
    Builder builder(*this);
    builder.install(parser.get());
    accepted = XML_Parse(parser.get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE) ==
               XML_STATUS_OK;
    differs = differs || hasOtherLineEnds(content);
    if (!accepted) error = XML_ErrorString(XML_GetErrorCode(parser.get()));
}

}  // namespace RynCommon
