// What ryn-inspect does with one document.
#include "Inspection.h"

#include <RynCommon/RyDocument.h>
#include <RynCommon/RyXmlParser.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <sstream>

#include "Format.h"
#include "Progress.h"
#include "TreeComparison.h"
#include "TreeFacts.h"

using namespace RynCommon;

namespace {

using Clock = std::chrono::steady_clock;

void print(const char* label, const std::string& value) {
    std::printf("  %-15s %s\n", label, value.c_str());
}

void print(const char* label, const UnicodeString& value) {
    print(label, formatText(value));
}

std::string escapeForUri(const std::string& path) {
    std::string uri;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) ||
            (c != '\0' && std::string_view("/-._~").find(c) != std::string_view::npos)) {
            uri += c;
        } else {
            char escape[4];
            std::snprintf(escape, sizeof escape, "%%%02X", byte);
            uri += escape;
        }
    }
    return uri;
}

// A file that exists is meant as a path, whatever characters it has; all else is taken as it is.
UnicodeString makeUri(const std::string& name) {
    std::error_code ignored;
    if (!std::filesystem::exists(name, ignored)) return UnicodeString::fromUTF8(name);
    const std::filesystem::path path = std::filesystem::absolute(name, ignored);
    return UnicodeString::fromUTF8("file://" + escapeForUri(path.lexically_normal().string()));
}

// A stream's memory that reports what is written into it.
class ReportingBuffer : public std::stringbuf {
public:
    explicit ReportingBuffer(Progress& progress)
        : std::stringbuf(std::ios::out), progress_(progress) {}

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        progress_.add(static_cast<std::uint64_t>(count));
        return std::stringbuf::xsputn(bytes, count);
    }

private:
    Progress& progress_;
};

class Inspection {
public:
    Inspection(const std::string& name, const InspectionOptions& options)
        : name_(name), options_(options) {}

    bool run() {
        load();
        const std::string saved = save();
        return compare(saved);
    }

private:
    // In pull mode load() returns before anything is parsed; each node comes when it is asked for.
    void load() {
        const Clock::time_point start = Clock::now();
        document_->setPullMode(true);
        document_->load(makeUri(name_));
        const RyElement* const root = document_->getDocumentElement();
        const Clock::duration first = Clock::now() - start;
        encoding_ = document_->getParser()->getInputEncoding();
        print("encoding", encoding_);
        if (root != nullptr) printRoot(*root);
        print("first element", formatTime(first));
        loadRest(*document_, "loading");
        const Clock::duration all = Clock::now() - start;
        print("all loaded",
              formatTime(all) + ", the first element after " + formatShare(first, all));
        printCounts();
    }

    void printCounts() const {
        const TreeFacts facts = countTree(*document_);
        print("elements", formatCount(facts.elements));
        print("attributes", formatCount(facts.attributes));
        print("as values", formatCount(facts.lengths) + " lengths, " +
                               formatCount(facts.percentages) + " percentages, " +
                               formatCount(facts.otherNumbers) + " other numbers, " +
                               formatCount(facts.colors) + " colours, " + formatCount(facts.names) +
                               " names, " + formatCount(facts.otherTexts) + " other texts");
        print("texts",
              formatCount(facts.texts) + " (" + formatCount(facts.characters) + " characters)");
        print("depth", formatCount(facts.depth));
    }

    static void printRoot(const RyElement& root) {
        const UnicodeString& ns = root.getNamespaceUri().toString();
        print("root", root.getNodeName().toString());
        print("namespace", ns.isEmpty() ? UnicodeString(u"none") : ns);
    }

    static void loadRest(RyDocument& document, const char* what) {
        Progress progress(what, "nodes");
        while (document.loadNextNode() != nullptr) progress.add();
    }

    std::string save() {
        const bool shiftJis = UnicodeString(encoding_).toUpper().indexOf(u"JIS") >= 0;
        const UnicodeString encoding(shiftJis ? u"SHIFT_JIS" : u"UTF-8");
        const Clock::time_point start = Clock::now();
        Progress progress("saving", "bytes");
        ReportingBuffer buffer(progress);
        std::ostream out(&buffer);
        document_->getSerializer()->setConformant(!options_.defaultForm);
        document_->save(out, nullptr, encoding);
        std::string saved = std::move(buffer).str();
        print("saved", formatCount(saved.size()) + " bytes of " + formatText(encoding) + " in " +
                           formatTime(Clock::now() - start));
        return saved;
    }

    bool compare(const std::string& saved) {
        const RyPtr<RyDocument> again(new RyDocument);
        std::istringstream in(saved);
        again->setPullMode(true);
        again->load(in);
        loadRest(*again, "loading again");
        Progress progress("comparing", "nodes");
        const std::optional<UnicodeString> difference =
            findDifference(*document_, *again, progress);
        print("loaded again", difference ? u"DIFFERENT: " + *difference : UnicodeString(u"equal"));
        return !difference;
    }

    const std::string& name_;
    const InspectionOptions& options_;
    RyPtr<RyDocument> document_ = new RyDocument;
    UnicodeString encoding_;
};

// The parser's errors carry their position as the message's last line, others in fields of their
// own.
void printError(const RyError& error) {
    UnicodeString message = error.getRawMessage();
    UnicodeString position = error.getPositionDescription();
    const std::int32_t lastLine = message.lastIndexOf(u'\n');
    if (position.isEmpty() && lastLine >= 0) {
        position = message.tempSubString(lastLine + 1);
        message.truncate(lastLine);
    }
    print("error", std::to_string(error.getErrorCode()));
    print("message", message);
    if (!position.isEmpty()) print("position", position);
}

}  // namespace

bool inspect(const std::string& name, const InspectionOptions& options) {
    std::printf("%s\n", formatText(UnicodeString::fromUTF8(name)).c_str());
    Inspection inspection(name, options);
    try {
        return inspection.run();
    } catch (const RyError& error) {
        printError(error);
    } catch (const std::exception& error) {
        printError(RyError(error, u"ryn-inspect"));
    }
    return false;
}
