// The reading point; see the header.
#include "xml/parser/Scanner.h"

#include <RynCommon/RyString.h>
#include <unicode/utf16.h>

#include "core/MemoryCheck.h"
#include "xml/parser/Entities.h"

namespace RynCommon {

Scanner::Scanner(ScannerOwner& owner) : owner_(owner) {
    sources_.push_back(std::make_unique<Source>());
    top().input = std::make_unique<TextInput>();
}

void Scanner::begin(const UnicodeString& uri) {
    while (depth_ > 1) pop();
    top().uri = uri;
    capture_ = nullptr;
    unitsOfClosedInputs_ = 0;
    cur_ = end_ = seen_ = nullptr;
}

void Scanner::releaseBuffers() {
    while (depth_ > 1) pop();
    sources_.resize(1);
    countedInput();
    base().close();
    base().releaseBuffers();
    cur_ = end_ = seen_ = nullptr;
    collected_ = UnicodeString();
    capture_ = nullptr;
}

// Windows and inputs.

bool Scanner::more() {
    owner_.windowLeaves();
    for (;;) {
        if (top().input != nullptr && refill(*top().input)) return true;
        if (depth_ == 1) return false;
        pop();
        if (cur_ != end_) return true;
    }
}

/// The next window of a stream; false when it has ended.
bool Scanner::refill(TextInput& input) {
    for (;;) {
        if (capture_ != nullptr && captureDepth_ == depth_) flushCapture();
        const TextInput::Refill result = input.refill();
        cur_ = seen_ = captureFrom_ = input.windowBegin();
        end_ = input.windowEnd();
        if (result == TextInput::Refill::END) {
            cur_ = end_;
            return false;
        }
        if (result == TextInput::Refill::INVALID_CHARACTER) owner_.invalidCharacterRead();
        if (cur_ != end_) return true;
    }
}

void Scanner::save() {
    top().cur = cur_;
    top().end = end_;
    top().seen = seen_;
}

void Scanner::restore() {
    cur_ = top().cur;
    end_ = top().end;
    seen_ = top().seen;
}

void Scanner::pop() {
    Source& source = top();
    if (source.input != nullptr) {
        unitsOfClosedInputs_ += source.input->unitsRead();
        source.input.reset();
        source.uri.remove();
    }
    if (source.entity != nullptr) --source.entity->openCount;
    --depth_;
    restore();
}

Scanner::Source& Scanner::pushSource(EntityDeclaration* entity) {
    owner_.windowLeaves();
    if (depth_ == sources_.size()) sources_.push_back(std::make_unique<Source>());
    save();
    ++depth_;
    top().entity = entity;
    if (entity != nullptr) ++entity->openCount;
    return top();
}

void Scanner::pushText(const UnicodeString& text, EntityDeclaration* entity) {
    Source& source = pushSource(entity);
    source.text = text;
    requireWhole(source.text);
    cur_ = seen_ = source.text.getBuffer();
    end_ = cur_ + source.text.length();
}

void Scanner::pushInput(std::unique_ptr<TextInput> input, const UnicodeString& uri,
                        EntityDeclaration* entity) {
    Source& source = pushSource(entity);
    source.input = std::move(input);
    source.uri = uri;
    cur_ = end_ = seen_ = nullptr;
}

TextInput& Scanner::topInput() {
    std::size_t i = depth_ - 1;
    while (sources_[i]->input == nullptr) --i;
    return *sources_[i]->input;
}

bool Scanner::isOpen(const UnicodeString& uri) const {
    for (std::size_t i = 0; i < depth_; ++i) {
        const Source& source = *sources_[i];
        if (source.input != nullptr && !source.uri.isEmpty() && source.uri == uri) return true;
    }
    return false;
}

bool Scanner::isOpen(const EntityDeclaration* entity) const {
    return entity->openCount != 0;
}

std::uint64_t Scanner::unitsRead() const {
    std::uint64_t units = unitsOfClosedInputs_;
    for (std::size_t i = 0; i < depth_; ++i)
        if (sources_[i]->input != nullptr) units += sources_[i]->input->unitsRead();
    return units;
}

// Positions.

/// The topmost stream with its position brought up to date.
TextInput& Scanner::countedInput() {
    std::size_t i = depth_ - 1;
    const char16_t* cur = cur_;
    const char16_t* seen = seen_;
    while (sources_[i]->input == nullptr) {
        --i;
        cur = sources_[i]->cur;
        seen = sources_[i]->seen;
    }
    TextInput& input = *sources_[i]->input;
    if (cur != nullptr) input.countTo(seen > cur ? seen : cur);
    return input;
}

Scanner::Position Scanner::positionOfStream() {
    const TextInput& input = countedInput();
    return {input.line(), input.column()};
}

// Single units and runs.

int Scanner::getCodePoint() {
    const int c = get();
    if (c == END || !U16_IS_LEAD(c)) return c;
    const int low = peek();
    if (low == END || !U16_IS_TRAIL(low)) return c;
    skip();
    return U16_GET_SUPPLEMENTARY(c, low);
}

UnicodeString Scanner::peekCharacter() {
    const int c = peek();
    if (c == END) return UnicodeString();
    UnicodeString text(static_cast<char16_t>(c));
    // The halves of a supplementary character always leave the decoder together.
    if (U16_IS_LEAD(c) && end_ - cur_ > 1 && U16_IS_TRAIL(cur_[1])) text.append(cur_[1]);
    return text;
}

bool Scanner::skipSpaceSlowly() {
    bool any = false;
    for (;;) {
        if (cur_ == end_ && !more()) return any;
        const char16_t* p = cur_;
        while (p != end_ && isXmlSpace(*p)) ++p;
        any = any || p != cur_;
        cur_ = p;
        if (p == end_) continue;
        look(p + 1);
        return any;
    }
}

Scanner::Name Scanner::nameUpTo(const char16_t* begin, const char16_t* end, std::ptrdiff_t colon) {
    cur_ = end;
    look(end + 1);
    if (static_cast<std::size_t>(end - begin) > longestName_) owner_.nameTooLong();
    return {begin, static_cast<std::size_t>(end - begin), colon, true};
}

Scanner::Name Scanner::collected(std::ptrdiff_t colon) const {
    return {collected_.getBuffer(), static_cast<std::size_t>(collected_.length()), colon, true};
}

Scanner::Name Scanner::scanName() {
    const int first = peek();
    if (first == END || !isNameStart(static_cast<char16_t>(first))) return {};
    const char16_t* const begin = cur_;
    const char16_t* const p = nameEnd(begin, end_);
    if (p != end_) return nameUpTo(begin, p, -1);
    collected_.remove();
    collectName();
    return collected(-1);
}

Scanner::Name Scanner::scanQName() {
    if (cur_ == end_ && !more()) return {};
    const char16_t* const begin = cur_;
    if (!isNameStart(*begin)) {
        look(begin + 1);
        return {};
    }
    const char16_t* const p = nameEnd(begin, end_);
    if (p != end_ && *p != u':') return nameUpTo(begin, p, -1);
    if (end_ - p > 1 && isNameStart(p[1])) {
        const char16_t* const localEnd = nameEnd(p + 1, end_);
        if (localEnd != end_) return nameUpTo(begin, localEnd, p - begin);
    }
    // The name crosses the window's end, or lacks its local part.
    collected_.remove();
    collectName();
    if (peek() != u':') return collected(-1);
    const std::ptrdiff_t colon = collected_.length();
    collected_.append(u':');
    skip();
    const int c = peek();
    Name name = collected(colon);
    name.complete = c != END && isNameStart(static_cast<char16_t>(c));
    if (!name.complete) return name;
    collectName();
    return collected(colon);
}

/// Appends name units to collected_, across windows.
void Scanner::collectName() {
    for (;;) {
        if (cur_ == end_ && !more()) return;
        const char16_t* const p = nameEnd(cur_, end_);
        collected_.append(cur_, 0, static_cast<std::int32_t>(p - cur_));
        requireWhole(collected_);
        if (static_cast<std::size_t>(collected_.length()) > longestName_) owner_.nameTooLong();
        cur_ = p;
        if (p == end_) continue;
        look(p + 1);
        return;
    }
}

// Capturing.

void Scanner::startCapture(TextBuffer& text) {
    text.clear();
    capture_ = &text;
    captureDepth_ = depth_;
    captureFrom_ = cur_;
}

void Scanner::flushCapture() {
    if (captureFrom_ != nullptr && cur_ > captureFrom_)
        capture_->append(captureFrom_, static_cast<std::size_t>(cur_ - captureFrom_));
}

void Scanner::stopCapture() {
    if (capture_ != nullptr && captureDepth_ == depth_) flushCapture();
    capture_ = nullptr;
}

}  // namespace RynCommon
