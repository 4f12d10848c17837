// ryn-inspect: tells what files and URIs hold, and looks into them.
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ResourceReport.h"

namespace {

constexpr char USAGE[] =
    "Usage: ryn-inspect [OPTION | FILE | URI]...\n"
    "Tells by its content what each file or URI (file:, http:, https:, data:, jar:) holds, and\n"
    "looks into it:\n"
    "\n"
    "  XML              loads it lazily and prints encoding, root element, the time until the "
    "first\n"
    "                   element was there and until all was loaded, and counts of what is in it;\n"
    "                   saves the tree, loads the result again and says whether both are equal\n"
    "  gzip             looks into what it holds\n"
    "  zip              lists the members; of an office package also its class, main part,\n"
    "                   content types, relationships and application version\n"
    "  compound files   print class, version, sectors, storages and streams, properties and links\n"
    "\n"
    "What is broken gets its error printed, and the next one follows.\n"
    "\n"
    "  --broken FILE    something that is expected to be broken\n"
    "  --extract MEMBER OUT\n"
    "                   copy one member of the next archive or compound file, by the name (or "
    "the\n"
    "                   names with \"/\" between them) that the list shows, into the file OUT\n"
    "  --default-form   save XML in the library's default form, which is not for other XML "
    "readers,\n"
    "                   instead of the conformant one\n"
    "  --help           this text\n"
    "\n"
    "Exit status: 0 when everything is as expected, 1 when something is not, 2 for a wrong "
    "command\n"
    "line.\n";

struct Document {
    std::string name;
    bool broken = false;
    std::optional<Extraction> extraction;
};

struct CommandLine {
    std::vector<Document> documents;
    XmlReportOptions options;
    bool help = false;
    std::string mistake;
};

CommandLine parse(const std::vector<std::string>& arguments) {
    CommandLine line;
    bool onlyNames = false;
    std::optional<Extraction> extraction;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const std::size_t left = arguments.size() - i - 1;
        if (onlyNames || argument.empty() || argument[0] != '-') {
            line.documents.push_back({argument, false, std::exchange(extraction, std::nullopt)});
        } else if (argument == "--") {
            onlyNames = true;
        } else if (argument == "--help" || argument == "-h") {
            line.help = true;
        } else if (argument == "--default-form") {
            line.options.defaultForm = true;
        } else if (argument == "--broken" && left >= 1) {
            line.documents.push_back(
                {arguments[++i], true, std::exchange(extraction, std::nullopt)});
        } else if (argument == "--extract" && left >= 3) {
            extraction = Extraction{arguments[i + 1], arguments[i + 2]};
            i += 2;
        } else {
            line.mistake = argument;
        }
    }
    if (extraction) line.mistake = "--extract";
    return line;
}

// The number of documents that are not as expected.
int inspectAll(const CommandLine& line) {
    int surprises = 0;
    for (const Document& document : line.documents) {
        if (&document != &line.documents.front()) std::puts("");
        const bool good = reportResource(document.name, line.options,
                                         document.extraction ? &*document.extraction : nullptr);
        if (document.broken)
            std::printf("  %-15s %s\n", "expected", good ? "an error, but there is none" : "yes");
        if (good == document.broken) ++surprises;
        std::fflush(stdout);
    }
    return surprises;
}

}  // namespace

int main(int argc, char** argv) {
    const CommandLine line = parse(std::vector<std::string>(argv + 1, argv + argc));
    if (line.help) {
        std::fputs(USAGE, stdout);
        return 0;
    }
    if (!line.mistake.empty() || line.documents.empty()) {
        if (!line.mistake.empty())
            std::fprintf(stderr, "ryn-inspect: cannot make sense of %s\n\n", line.mistake.c_str());
        std::fputs(USAGE, stderr);
        return 2;
    }
    return inspectAll(line) == 0 ? 0 : 1;
}
