// The properties of a document that every user asks for.
#include <RynCommon/OleSummaryInformation.h>
#include <RynCommon/RyValue.h>

namespace RynCommon {

namespace {

// Ids of the summary information.
constexpr unsigned long TITLE = 2;
constexpr unsigned long SUBJECT = 3;
constexpr unsigned long AUTHOR = 4;
constexpr unsigned long KEYWORDS = 5;

UnicodeString getText(OleSummaryInformation& information, unsigned long id) {
    RyValue value;
    return information.getProperty(id, value) == 1 ? value.toString() : UnicodeString();
}

}  // namespace

OlePropertySet::OlePropertySet() = default;

OlePropertySet::~OlePropertySet() = default;

bool OlePropertySet::init(OleCompFile* file) {
    OleSummaryInformation information;
    const bool found = information.initSummaryInformation(file) == 1;
    title_ = getText(information, TITLE);
    subject_ = getText(information, SUBJECT);
    author_ = getText(information, AUTHOR);
    keywords_ = getText(information, KEYWORDS);
    return found;
}

}  // namespace RynCommon
