// ryn-generate: writes a long XSL-FO document with the library's serializer, the same one every
// time.
#include <RynCommon/RynCommon.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

using namespace RynCommon;

namespace {

constexpr const char16_t* WORDS[] = {
    u"paper",   u"page",    u"margin",    u"column",     u"the",    u"of",
    u"a",       u"heading", u"between",   u"line",       u"and",    u"figure",
    u"printed", u"width",   u"measures",  u"within",     u"footer", u"letter",
    u"every",   u"fold",    u"caf\u00E9", u"na\u00EFve", u"紙",     u"組版",
};

RyName name(const char16_t* text) {
    return RyName(UnicodeString(text));
}

// A generator of plain, repeatable numbers (the constants of Numerical Recipes).
class Numbers {
public:
    std::uint32_t below(std::uint32_t limit) {
        state_ = state_ * 1664525u + 1013904223u;
        return (state_ >> 8) % limit;
    }

private:
    std::uint32_t state_ = 1;
};

class DocumentWriter {
public:
    explicit DocumentWriter(std::ofstream& file) : file_(file) {
        out_->setConformant(true);
        out_->setOutput(&file, u"UTF-8");
        out_->startDocument(UnicodeString(), UnicodeString());
    }

    void write(std::uint64_t size) {
        open(u"root");
        writeMasters();
        for (int sequence = 1; static_cast<std::uint64_t>(file_.tellp()) < size; ++sequence) {
            writeSequence(sequence);
            out_->flush();
        }
        close(u"root");
        out_->endDocument();
    }

private:
    void open(const char16_t* local) { out_->startTag(FO, PREFIX, name(local), false); }
    void close(const char16_t* local) { out_->endTag(FO, name(local)); }
    void attribute(const char16_t* local, const UnicodeString& value) {
        out_->attribute(RyName(), name(local), value);
    }

    void writeMasters() {
        open(u"layout-master-set");
        open(u"simple-page-master");
        attribute(u"master-name", u"page");
        attribute(u"page-width", u"210mm");
        attribute(u"page-height", u"297mm");
        open(u"region-body");
        attribute(u"margin", u"25mm 20mm");
        close(u"region-body");
        close(u"simple-page-master");
        close(u"layout-master-set");
    }

    void writeSequence(int number) {
        open(u"page-sequence");
        attribute(u"master-reference", u"page");
        open(u"flow");
        attribute(u"flow-name", u"xsl-region-body");
        writeHeading(number);
        for (int i = 0; i < 40; ++i) {
            writeParagraph();
            if (i % 10 == 5) writeTable();
        }
        close(u"flow");
        close(u"page-sequence");
    }

    void writeHeading(int number) {
        const UnicodeString text = RyUtil::toString(number);
        open(u"block");
        attribute(u"id", u"chapter-" + text);
        attribute(u"font-size", u"18pt");
        attribute(u"keep-with-next.within-page", u"always");
        out_->text(text + u". " + sentence(4));
        close(u"block");
    }

    void writeParagraph() {
        open(u"block");
        attribute(u"space-before", u"6pt");
        attribute(u"text-align", u"justify");
        out_->text(sentence(10 + numbers_.below(30)));
        open(u"inline");
        attribute(u"font-style", u"italic");
        out_->text(sentence(3));
        close(u"inline");
        out_->text(u" A < B & C: " + sentence(10 + numbers_.below(30)));
        close(u"block");
    }

    void writeTable() {
        open(u"table");
        open(u"table-body");
        for (int row = 0; row < 5; ++row) {
            open(u"table-row");
            for (int column = 0; column < 4; ++column) {
                open(u"table-cell");
                attribute(u"padding", u"2pt");
                open(u"block");
                out_->text(RyUtil::toString(static_cast<int>(numbers_.below(100000))));
                close(u"block");
                close(u"table-cell");
            }
            close(u"table-row");
        }
        close(u"table-body");
        close(u"table");
    }

    UnicodeString sentence(std::uint32_t words) {
        UnicodeString text;
        for (std::uint32_t i = 0; i < words; ++i)
            text.append(WORDS[numbers_.below(std::size(WORDS))])
                .append(i + 1 < words ? u" " : u". ");
        return text;
    }

    const RyName FO = RN_NS_fo;
    const RyName PREFIX = name(u"fo");
    std::ofstream& file_;
    RyPtr<RyXmlSerializer> out_ = RyXmlUtil::createXmlSerializer();
    Numbers numbers_;
};

}  // namespace

int main(int argc, char** argv) try {
    unsigned megabytes = 0;
    const char* const size = argc == 3 ? argv[1] : "";
    const auto [end, error] = std::from_chars(size, size + std::strlen(size), megabytes);
    if (error != std::errc() || *end != '\0' || megabytes == 0) {
        std::fputs("Usage: ryn-generate SIZE_MB OUT\nWrites an XSL-FO document of that size.\n",
                   stderr);
        return 2;
    }
    std::ofstream file(argv[2], std::ios::binary);
    DocumentWriter(file).write(megabytes * std::uint64_t{1000000});
    return 0;
} catch (const RyError& error) {
    std::string message;
    std::fprintf(stderr, "ryn-generate: %s\n", error.getMessage().toUTF8String(message).c_str());
    return 1;
}
