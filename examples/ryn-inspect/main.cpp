// ryn-inspect: loads documents lazily, says what is in them, and proves that saving loses nothing.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "Inspection.h"

namespace {

constexpr char USAGE[] =
    "Usage: ryn-inspect [OPTION | FILE | URI]...\n"
    "Loads each XML document lazily and prints its encoding, its root element, the time until the\n"
    "first element was there and until all was loaded, and counts of what is in it. Then saves "
    "the\n"
    "tree, loads the result again and says whether both trees are equal. Of a broken document it\n"
    "prints the error and goes on with the next.\n"
    "\n"
    "  --broken FILE    a document that is expected to be broken\n"
    "  --default-form   save in the library's default form, which is not for other XML readers,\n"
    "                   instead of the conformant one\n"
    "  --help           this text\n"
    "\n"
    "Exit status: 0 when every document is as expected, 1 when one is not, 2 for a wrong command "
    "line.\n";

struct Document {
    std::string name;
    bool broken = false;
};

struct CommandLine {
    std::vector<Document> documents;
    InspectionOptions options;
    bool help = false;
    std::string mistake;
};

CommandLine parse(const std::vector<std::string>& arguments) {
    CommandLine line;
    bool onlyNames = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (onlyNames || argument.empty() || argument[0] != '-') {
            line.documents.push_back({argument});
        } else if (argument == "--") {
            onlyNames = true;
        } else if (argument == "--help" || argument == "-h") {
            line.help = true;
        } else if (argument == "--default-form") {
            line.options.defaultForm = true;
        } else if (argument == "--broken" && i + 1 < arguments.size()) {
            line.documents.push_back({arguments[++i], true});
        } else {
            line.mistake = argument;
        }
    }
    return line;
}

// The number of documents that are not as expected.
int inspectAll(const CommandLine& line) {
    int surprises = 0;
    for (const Document& document : line.documents) {
        if (&document != &line.documents.front()) std::puts("");
        const bool good = inspect(document.name, line.options);
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
