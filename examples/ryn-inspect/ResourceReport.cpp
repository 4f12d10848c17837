// The report of any resource.
#include "ResourceReport.h"

#include <RynCommon/RyError.h>

#include <cstdio>
#include <deque>
#include <exception>

#include "CompoundReport.h"
#include "Format.h"
#include "Input.h"
#include "Report.h"
#include "ZipReport.h"

using namespace RynCommon;

namespace {

/// Gzip data within gzip data that is looked into.
constexpr std::size_t MOST_LAYERS = 8;

const char* nameOf(Input::Kind kind) {
    switch (kind) {
        case Input::Kind::XML:
            return "XML";
        case Input::Kind::GZIP:
            return "gzip";
        case Input::Kind::ZIP:
            return "zip archive";
        case Input::Kind::COMPOUND:
            return "compound file";
        default:
            return "other data";
    }
}

std::uint64_t sizeOf(std::istream& stream) {
    stream.seekg(0, std::ios::end);
    return static_cast<std::uint64_t>(stream.tellg());
}

bool report(Input& input, Input::Kind kind, const XmlReportOptions& options) {
    switch (kind) {
        case Input::Kind::ZIP:
            return reportZip(input.wholeStream());
        case Input::Kind::COMPOUND:
            return reportCompoundFile(input.wholeStream());
        case Input::Kind::OTHER:
            print("size", formatCount(sizeOf(input.wholeStream())) + " bytes");
            return true;
        default:
            return reportXml(input, options);
    }
}

bool extract(Input& input, Input::Kind kind, const Extraction& extraction) {
    if (kind == Input::Kind::ZIP) return extractMember(input.wholeStream(), extraction);
    if (kind == Input::Kind::COMPOUND) return extractStream(input.wholeStream(), extraction);
    return printError("nothing can be copied out of this");
}

bool reportLayers(const std::string& name, const XmlReportOptions& options,
                  const Extraction* extraction) {
    std::deque<Input> layers;  // each reads the one before
    layers.emplace_back(name);
    if (layers.back().empty()) return printError(formatText(layers.back().reason()));
    if (!layers.back().contentType().isEmpty()) print("content type", layers.back().contentType());
    std::string kinds;
    Input::Kind kind = layers.back().kind();
    while (kind == Input::Kind::GZIP && layers.size() < MOST_LAYERS) {
        kinds += "gzip, in it: ";
        layers.push_back(Input::inflated(layers.back()));
        kind = layers.back().kind();
    }
    print("kind", kinds + nameOf(kind));
    return extraction != nullptr ? extract(layers.back(), kind, *extraction)
                                 : report(layers.back(), kind, options);
}

}  // namespace

bool reportResource(const std::string& name, const XmlReportOptions& options,
                    const Extraction* extraction) {
    std::printf("%s\n", formatText(UnicodeString::fromUTF8(name)).c_str());
    try {
        return reportLayers(name, options, extraction);
    } catch (const RyError& error) {
        printError(error);
    } catch (const std::exception& error) {
        printError(RyError(error, u"ryn-inspect"));
    }
    return false;
}
