// A compound file: its measures, its storages and streams, its properties.
#include "CompoundReport.h"

#include <RynCommon/OleCompFile.h>
#include <RynCommon/OleSummaryInformation.h>
#include <RynCommon/RyValue.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "Extraction.h"
#include "Format.h"
#include "Report.h"
#include "StorageTree.h"

using namespace RynCommon;

namespace {

const char* nameOf(OleCompFile::OLEDOCUMENT_TYPE type) {
    switch (type) {
        case OleCompFile::OLEDOC_WORD_PROCESSOR:
            return "word processing document";
        case OleCompFile::OLEDOC_SPREADSHEET:
            return "spreadsheet";
        case OleCompFile::OLEDOC_PRESENTATION:
            return "presentation";
        case OleCompFile::OLEDOC_VIEW_STYLES:
            return "document with view styles";
        default:
            return "no office document";
    }
}

void printMeasures(const OleCompFile& file) {
    print("version", file.getVersion() + (file.isLittleEndian() ? "" : ", big-endian"));
    print("sectors", formatCount(file.getBytesPerBlock()) + " bytes, mini sectors " +
                         formatCount(file.getBytesPerMini()) + " bytes, for streams below " +
                         formatCount(static_cast<std::uint64_t>(file.getMiniFatCutoff())) +
                         " bytes");
}

void printTree(const OleCompFile& file) {
    const std::vector<StorageEntry> entries = listStorages(file);
    print("storages", formatCount(entries.size()) + " entries");
    std::printf("    %14s  %s\n", "size", "name");
    for (const StorageEntry& entry : entries) {
        const OleDirInfo& info = *file.getDirInfo(entry.id);
        std::printf("    %14s  %*s%s%s\n",
                    info.isStream() ? formatCount(info.getStreamSize()).c_str() : "",
                    static_cast<int>(std::min<std::size_t>(2 * entry.depth, 40)), "",
                    entry.name.c_str(), info.isStorage() ? "/" : "");
    }
}

struct PropertyName {
    unsigned long id;
    const char* name;
};

// The properties of the two summaries that documents carry ([MS-OLEPS], 2.25).
constexpr PropertyName SUMMARY[] = {
    {1, "code page"},    {6, "comments"},      {7, "template"}, {8, "last author"},
    {9, "revision"},     {10, "editing time"}, {11, "printed"}, {12, "created"},
    {13, "saved"},       {14, "pages"},        {15, "words"},   {16, "characters"},
    {18, "application"}, {19, "security"},
};
constexpr PropertyName DOCUMENT_SUMMARY[] = {
    {2, "category"}, {3, "format"}, {5, "lines"},    {6, "paragraphs"},
    {7, "slides"},   {8, "notes"},  {14, "manager"}, {15, "company"},
};

template <std::size_t COUNT>
void printProperties(OleSummaryInformation& summary, const PropertyName (&names)[COUNT]) {
    for (const PropertyName& property : names) {
        RyValue value;
        if (summary.getPropertyAny(property.id, value) == 1)
            printItem(std::string(property.name) + ": " + formatText(value.toString()));
    }
}

void printSummary(OleCompFile& file) {
    OlePropertySet properties;
    if (!properties.init(&file)) {
        print("summary", "none");
        return;
    }
    print("title", properties.getTitle());
    print("subject", properties.getSubject());
    print("author", properties.getAuthor());
    print("keywords", properties.getKeywords());
    OleSummaryInformation summary;
    if (summary.initSummaryInformation(&file) != 1) return;
    print("summary", "in code page " + formatText(summary.getCodePage()));
    printProperties(summary, SUMMARY);
}

void printDocumentSummary(OleCompFile& file) {
    OleSummaryInformation summary;
    if (summary.initDocumentSummaryInformation(&file) != 1) return;
    print("document", "summary");
    printProperties(summary, DOCUMENT_SUMMARY);
    std::vector<UnicodeString> links;
    if (summary.getHyperLinks(links) <= 0) return;
    std::erase(links, UnicodeString());  // a link without a place in its target
    print("hyperlinks", formatCount(links.size()));
    for (const UnicodeString& link : links) printItem(formatText(link));
}

bool open(OleCompFile& file, JZStreamIOobj& reader) {
    return file.OLEopen(&reader) || printError("the compound file is damaged");
}

}  // namespace

bool reportCompoundFile(std::istream& in) {
    const OleCompFile::OLEDOCUMENT_TYPE type = OleCompFile::detectOLEDocument(in);
    in.clear();
    in.seekg(0);
    JZStreamIOobj reader(in);
    OleCompFile file;
    if (!open(file, reader)) return false;
    print("class", nameOf(type));
    printMeasures(file);
    printTree(file);
    printSummary(file);
    printDocumentSummary(file);
    return true;
}

bool extractStream(std::istream& in, const Extraction& extraction) {
    JZStreamIOobj reader(in);
    OleCompFile file;
    if (!open(file, reader)) return false;
    const std::vector<StorageEntry> entries = listStorages(file);
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const StorageEntry& entry) {
        return entry.path == extraction.member;
    });
    if (found == entries.end()) return printError("no stream " + extraction.member);
    OleStream stream(&file);
    if (!stream.GetStreamChain(found->id) || stream.OLEseek(0, 0) != 0)
        return printError("the stream cannot be read");
    RyOleStream data(&stream);
    return copyOut(data, extraction.target);
}
