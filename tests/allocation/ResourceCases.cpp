// URIs, archives, packages, compound files.
#include <RynCommon/OleCompFile.h>
#include <RynCommon/OleSummaryInformation.h>
#include <RynCommon/RyGzipStream.h>
#include <RynCommon/RyUri.h>
#include <RynCommon/RyValue.h>
#include <RynCommon/RyZipFile.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "tests/allocation/Inputs.h"
#include "tests/resources/OleFixture.h"
#include "tests/resources/PackageWriter.h"
#include "tests/resources/PropertySetWriter.h"
#include "tests/resources/ZipWriter.h"

namespace allocation {
namespace {

using namespace RynCommon;

constexpr char NONE[] = "(none)";

bool isNone(const std::string& result) {
    return result == NONE;
}

std::string makeGzip(const std::string& data) {
    std::ostringstream out;
    {
        RyGzipOStream gzip(out);
        gzip << data;
    }
    return out.str();
}

std::string none() {
    return paused([] { return std::string(NONE); });
}

const std::string PATH = "a/path/that/is/longer/than/a/string/keeps/within/itself";

TEST(Allocation, Uris) {
    const auto resolve = []() -> Action {
        return
            [base = widen("http://b\xC3\xBC"
                          "cher.example/" +
                          PATH),
             escaped = widen("%41%20%E3%81%82" + PATH), reference = widen("../" + PATH + "?q#f")] {
                const RyUri uri(RyUri(base), reference);
                const UnicodeString relative = RyUri(base).getRelativeUri(uri.toString());
                const RyUri file(reference);
                const UnicodeString path = file.getLocalPath();
                const UnicodeString plain = RyUri::unescape(escaped);
                const UnicodeString name = uri.getFileName();
                RyUri changed(uri);
                changed.setExtension(u"extension");
                changed.toDirectory();
                return paused([&] {
                    return narrow(uri.toString()) + narrow(relative) + narrow(path) +
                           narrow(plain) + narrow(name) + narrow(changed.toString());
                });
            };
    };
    const std::string archive = ::testing::TempDir() + "allocation-archive.zip";
    std::ofstream(archive, std::ios::binary)
        << makeZip({{.name = "m", .data = repeat("data ", 500)}});
    const std::string zipped = archive + ".gz";
    std::ofstream(zipped, std::ios::binary) << makeGzip(repeat("data ", 500));
    const auto gunzip = [zipped]() -> Action {
        return [uri = RyUri(widen(zipped))] {
            const std::unique_ptr<std::istream> in(uri.getGzipStream());
            return in ? readBytes(*in) : none();
        };
    };
    const auto fetch = [](const std::string& text) {
        return [text]() -> Action {
            return [uri = RyUri(widen(text))] {
                const std::unique_ptr<std::istream> in(uri.getStream());
                return in ? readBytes(*in) : none();
            };
        };
    };
    sweep({{"resolving", resolve},
           {"data", fetch("data:text/plain;base64,QUJD" + repeat("QUJD", 300)), Ending::VALUE,
            isNone},
           {"data, escaped", fetch("data:,a%20b" + repeat("%41", 300)), Ending::VALUE, isNone},
           {"file", fetch(archive), Ending::VALUE, isNone},
           {"gzip", gunzip, Ending::VALUE, isNone},
           {"jar", fetch("jar:" + archive + "!/m"), Ending::VALUE, isNone}});
    std::remove(archive.c_str());
    std::remove(zipped.c_str());
}

std::string packageBytes() {
    const std::string office =
        "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
    return makePackage(
        {{CONTENT_TYPES,
          typesXml("<Default Extension='xml' ContentType='application/xml'/>"
                   "<Override PartName='/word/document.xml' ContentType='application/vnd."
                   "openxmlformats-officedocument.wordprocessingml.document.main+xml'/>")},
         {PACKAGE_RELS, relsXml(rel("r1", office + "officeDocument", "word/document.xml"))},
         {"word/document.xml", "<w/>"},
         {"word/_rels/document.xml.rels",
          relsXml(rel("i1", office + "image", "media/an-image-with-a-long-name.png"))},
         {"docProps/app.xml", "<Properties><AppVersion>16.0000</AppVersion></Properties>"}});
}

TEST(Allocation, Archives) {
    const std::string bytes = makeZip({{.name = "first", .data = repeat("deflated ", 300)},
                                       {.name = PATH, .data = repeat("stored ", 300), .method = 0},
                                       {.name = "last", .data = ""}});
    const auto list = [bytes](bool directory) {
        return [=]() -> Action {
            return [=] {
                const auto in = openBytes(bytes);
                RyZipFile zip;
                zip.setUseCentralDirectory(directory);
                zip.setVerify(directory);
                zip.open(in.get(), false);
                std::string members;
                for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) {
                    RyZipFileEntry* const entry =
                        zip.getFileEntry(zip.getFileEntry(i)->getFileName());
                    const std::string data = readBytes(*entry->getUncompressedStream(false));
                    const Pause pause;
                    members += narrow(entry->getFileName()) + "=" + data;
                }
                return members;
            };
        };
    };
    const auto package = []() -> Action {
        const auto in = std::make_shared<std::istringstream>(packageBytes());
        const auto zip = std::make_shared<RyZipFile>(in.get(), false);
        return [in, zip] {
            const int kind = zip->detectOOXDocument();
            RyZipFileEntry* const main = zip->getOfficeDocument();
            const UnicodeString target = zip->getRelationshipTargetFromId(u"i1", main);
            const UnicodeString mode = zip->getRelationshipTargetMode(u"i1", main);
            const UnicodeString version = zip->getAppVersion();
            return paused([&] {
                return std::to_string(kind) + narrow(target) + narrow(mode) + narrow(version);
            });
        };
    };
    sweep({{"local headers", list(false)}, {"directory", list(true)}, {"package", package}});
}

test::OleImage compoundFile() {
    test::PropertySetWriter set;
    set.section()
        .add(1, 2, set.number(1252, 2))
        .add(2, 30, set.narrow("A title that is longer than most titles are"))
        .add(4, 30, set.narrow("The author"))
        .add(12, 64, set.number(0x01D9000000000000, 8));
    test::PropertySetWriter links;
    links.section().add(1, 2, links.number(1252, 2));
    links.section()
        .add(0, 0, links.dictionary({{2, "_PID_HLINKS"}}))
        .add(2, 65, links.hyperLinks({u"http://host/with/a/long/path", u"second"}));
    test::OleWriter writer;
    writer.addStream(0, u"\u0005SummaryInformation", set.write());
    writer.addStream(0, u"\u0005DocumentSummaryInformation", links.write());
    writer.addStream(0, u"WordDocument", test::makeContent(6000));
    const int storage = writer.addStorage(0, u"storage");
    for (char16_t c = u'a'; c < u'a' + 26; ++c)
        writer.addStream(storage, std::u16string(40, c).substr(0, 20), "x");
    return writer.write();
}

TEST(Allocation, CompoundFiles) {
    const std::string bytes = compoundFile().bytes();
    const auto streams = [bytes]() -> Action {
        const auto in = std::make_shared<std::istringstream>(bytes);
        const auto io = std::make_shared<JZStreamIOobj>(*in);
        const auto file = std::make_shared<OleCompFile>();
        return [in, io, file] {
            paused([&] { in->clear(); });
            if (!file->OLEopen(io.get())) return none();
            const char* const names[] = {"storage", "cccccccccccccccccccc"};
            const OleDirPath deep{2, names};
            const char* const large[] = {"WordDocument"};
            const OleDirPath path{1, large};
            std::string content = paused([] { return std::string(7000, '\0'); });
            std::uint32_t size = 0;
            for (const OleDirPath* each : {&deep, &path}) {
                OleStream* const stream = file->OLEopenStream(each);
                if (stream == nullptr) return none();
                RyOleStream reader(stream);
                reader.read(content.data() + size, 6500);
                size += static_cast<std::uint32_t>(reader.gcount());
                const bool bad = reader.bad();
                file->OLEcloseStream(stream);
                if (bad) return none();
            }
            content.resize(size);
            return content;
        };
    };
    const auto properties = [bytes]() -> Action {
        const auto in = std::make_shared<std::istringstream>(bytes);
        const auto io = std::make_shared<JZStreamIOobj>(*in);
        const auto file = std::make_shared<OleCompFile>();
        file->OLEopen(io.get());
        return [in, io, file] {
            OleSummaryInformation summary;
            OleSummaryInformation document;
            RyValue title;
            RyValue author;
            RyValue time;
            std::vector<UnicodeString> links;
            if (summary.initSummaryInformation(file.get()) != 1 ||
                document.initDocumentSummaryInformation(file.get()) != 1 ||
                summary.getProperty(2, title) != 1 || summary.getProperty(4, author) != 1 ||
                summary.getPropertyAny(12, time) != 1 || document.getHyperLinks(links) != 2) {
                return none();
            }
            return paused([&] {
                return narrow(title.toString()) + narrow(author.toString()) +
                       narrow(time.toString()) + narrow(links[0]) + narrow(links[1]) +
                       narrow(summary.getCodePage());
            });
        };
    };
    const auto detect = [bytes]() -> Action {
        return [bytes] {
            const auto in = openBytes(bytes);
            const int kind = OleCompFile::detectOLEDocument(*in);
            return kind == 0 ? none() : paused([&] { return std::to_string(kind); });
        };
    };
    sweep({{"streams", streams, Ending::VALUE, isNone},
           {"properties", properties, Ending::VALUE, isNone},
           {"kinds", detect, Ending::VALUE, isNone}});
}

}  // namespace
}  // namespace allocation
