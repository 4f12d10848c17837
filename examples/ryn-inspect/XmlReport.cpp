// An XML document: loaded lazily, counted, saved, loaded again, compared.
#include "XmlReport.h"

#include <RynCommon/RyDocument.h>
#include <RynCommon/RyXmlParser.h>

#include <chrono>
#include <optional>
#include <sstream>

#include "Format.h"
#include "Progress.h"
#include "Report.h"
#include "TreeComparison.h"
#include "TreeFacts.h"

using namespace RynCommon;

namespace {

using Clock = Input::Clock;

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

class XmlReport {
public:
    XmlReport(Input& input, const XmlReportOptions& options) : input_(input), options_(options) {}

    bool run() {
        load();
        const std::string saved = save();
        return compare(saved);
    }

private:
    // In pull mode load() returns before anything is parsed; each node comes when it is asked for.
    void load() {
        document_->setPullMode(true);
        document_->getParser()->setInput(input_.stream(), UnicodeString(), input_.uri());
        document_->load();
        const RyElement* const root = document_->getDocumentElement();
        const Clock::duration first = Clock::now() - input_.start();
        encoding_ = document_->getParser()->getInputEncoding();
        print("encoding", encoding_);
        if (root != nullptr) printRoot(*root);
        print("first element", formatTime(first));
        loadRest(*document_, "loading");
        const Clock::duration all = Clock::now() - input_.start();
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

    Input& input_;
    const XmlReportOptions& options_;
    RyPtr<RyDocument> document_ = new RyDocument;
    UnicodeString encoding_;
};

}  // namespace

bool reportXml(Input& input, const XmlReportOptions& options) {
    return XmlReport(input, options).run();
}
