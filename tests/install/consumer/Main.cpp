// Uses a little of everything that a consumer links: names, values, errors, the parser, a tree and
// its saving.
#include <RynCommon/RynCommon.h>

#include <cstdio>
#include <sstream>

using namespace RynCommon;

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "failed: %s\n", what);
    ++failures;
}

void loadsEditsAndSaves() {
    std::istringstream in("<?xml version='1.0' encoding='Shift_JIS'?><a x='1'>t<b/>\x82\xA0</a>");
    const RyPtr<RyDocument> document(new RyDocument);
    document->load(in);
    RyElement* const root = document->getDocumentElement();
    expect(root != nullptr && root->getLocalName().toString() == u"a", "the root is found");
    expect(root->getInnerText() == u"t\u3042", "the text is decoded");
    root->setAttribute(RyName(u"y"), RyValue(12.5, RYUNIT_PT));

    const UnicodeString saved = document->saveXml();
    expect(saved.indexOf(u"y=\"12.5pt\"") >= 0, "the new attribute is saved");
    const RyPtr<RyDocument> again(new RyDocument);
    again->loadXml(saved);
    expect(again->saveXml() == saved, "what was saved loads again");
}

void reportsErrors() {
    const RyPtr<RyDocument> document(new RyDocument);
    try {
        document->loadXml(u"<a>");
        expect(false, "an open element is an error");
    } catch (const RyError& error) {
        expect(error.getErrorCategory() == RYERROR_XML, "the error crosses the library's border");
    }
}

}  // namespace

int main() {
    loadsEditsAndSaves();
    reportsErrors();
    return failures == 0 ? 0 : 1;
}
