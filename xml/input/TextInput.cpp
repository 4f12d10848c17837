// Windows of decoded text; see the header.
#include "xml/input/TextInput.h"

#include <RynCommon/RyDMCStream.h>
#include <unicode/locid.h>

#include <limits>
#include <string>

#include "core/UnitScan.h"

namespace RynCommon {

namespace {

constexpr std::ptrdiff_t LONGEST_STEP = 128;
constexpr char16_t CR = 0x000D, LF = 0x000A, NEL = 0x0085, NONE = 0xFFFF;

UnicodeString upperCased(const UnicodeString& name) {
    UnicodeString result(name);
    return result.trim().toUpper(icu::Locale::getRoot());
}

int saturated(std::uint64_t value) {
    constexpr auto limit = static_cast<std::uint64_t>(std::numeric_limits<int>::max());
    return static_cast<int>(value < limit ? value : limit);
}

}  // namespace

TextInput::TextInput() = default;
TextInput::~TextInput() = default;

void TextInput::open(std::istream& in) {
    close();
    reset();
    source_ = &in;
    bytes_.open(source_);
}

void TextInput::open(std::unique_ptr<std::istream> in) {
    open(*in);
    owned_ = std::move(in);
}

void TextInput::close() {
    bytes_.open(nullptr);
    converter_.reset();
    owned_.reset();
    source_ = nullptr;
}

void TextInput::releaseBuffers() {
    units_.reset();
    window_ = windowEnd_ = decodedEnd_ = counted_ = columnStop_ = nullptr;
    bytes_.releaseBuffer();
}

void TextInput::reset() {
    encodingName_.remove();
    kind_ = ENCODING_UNKNOWN;
    fromMark_ = stepping_ = afterCarriageReturn_ = false;
    window_ = windowEnd_ = decodedEnd_ = counted_ = units_.get();
    columnStop_ = nullptr;
    line_ = column_ = -1;
    unitsRead_ = 0;
}

TextInput::Declared TextInput::setGivenEncoding(const UnicodeString& name, bool builtinOnly,
                                                bool rawFallback) {
    if (name.isEmpty()) return Declared::ACCEPTED;
    const EncodingKind kind = encodingKindOf(name);
    if (kind == ENCODING_CONVERTER) return useConverter(name, builtinOnly, rawFallback);
    kind_ = kind;
    encodingName_ = upperCased(name);
    return Declared::ACCEPTED;
}

bool TextInput::start() {
    line_ = 1;
    column_ = 0;
    if (kind_ == ENCODING_CONVERTER) return true;
    const SniffedEncoding sniffed = sniffEncoding(bytes_, kind_);
    if (sniffed.kind != ENCODING_UNKNOWN) {
        kind_ = sniffed.kind;
        fromMark_ = sniffed.fromMark;
        encodingName_ = UnicodeString(sniffed.name());
    } else if (sniffed.broken) {
        kind_ = ENCODING_UNKNOWN;
    }
    if (kind_ == ENCODING_UNKNOWN) {
        kind_ = ENCODING_UTF8;
        encodingName_ = UnicodeString(u"UTF-8");
    }
    return !sniffed.broken;
}

TextInput::Declared TextInput::setDeclaredEncoding(const UnicodeString& name, bool builtinOnly,
                                                   bool rawFallback) {
    if (kind_ == ENCODING_CONVERTER) return Declared::ACCEPTED;
    const EncodingKind declared = encodingKindOf(name);
    if (fromMark_ && declared != kind_) {
        const bool generic = (declared == ENCODING_UTF16 &&
                              (kind_ == ENCODING_UTF16LE || kind_ == ENCODING_UTF16BE)) ||
                             (declared == ENCODING_UTF32 &&
                              (kind_ == ENCODING_UTF32LE || kind_ == ENCODING_UTF32BE));
        return generic ? Declared::ACCEPTED : Declared::CONFLICT;
    }
    // What is read in units of two or four bytes cannot change, and what is read in bytes cannot be
    // wide.
    if (fromMark_ || isOrderedWide(kind_) || isWide(declared)) return Declared::ACCEPTED;
    if (declared == ENCODING_CONVERTER) return useConverter(name, builtinOnly, rawFallback);
    kind_ = declared;
    encodingName_ = upperCased(name);
    if (encodingName_.length() == 1) encodingName_ = UnicodeString(u"UTF-8");
    return Declared::ACCEPTED;
}

TextInput::Declared TextInput::useConverter(const UnicodeString& name, bool builtinOnly,
                                            bool rawFallback) {
    if (builtinOnly) return Declared::UNSUPPORTED;
    const UnicodeString converterName = converterNameOf(name);
    std::string narrow;
    converterName.toUTF8String(narrow);
    auto converter = std::make_unique<RyDMCStream>(source_, narrow.c_str());
    if (converter->is_open()) {
        converter_ = std::move(converter);
        bytes_.replaceStream(converter_.get());
        kind_ = ENCODING_CONVERTER;
    } else if (rawFallback) {
        kind_ = ENCODING_LATIN1;
    } else {
        return Declared::UNSUPPORTED;
    }
    encodingName_ = converterName;
    return Declared::ACCEPTED;
}

TextInput::Refill TextInput::refill() {
    countTo(windowEnd_);
    if (stepping_ && stepAscii()) return Refill::WINDOW;
    if (windowEnd_ != decodedEnd_) {
        // The window ended before a U+FFFF, which is told of once and left out.
        window_ = counted_ = windowEnd_ + 1;
        columnStop_ = nullptr;
        addColumns(1);
        windowEnd_ = findUnit(window_, decodedEnd_, NONE);
        return Refill::INVALID_CHARACTER;
    }
    do {
        if (!decodeMore()) return Refill::END;
    } while (window_ == decodedEnd_);
    unitsRead_ += static_cast<std::uint64_t>(decodedEnd_ - window_);
    counted_ = window_;
    columnStop_ = nullptr;
    if (windowEnd_ == window_ && windowEnd_ != decodedEnd_) return refill();
    return Refill::WINDOW;
}

/// A window of printable ASCII, in an encoding that writes it as one byte a character; false where
/// something else comes. An XML declaration ends behind ">" or, when it is broken, before "<", so
/// that up to there its encoding has no say yet. Reading it by single characters was a sixth of the
/// time that a document of four kilobytes takes.
bool TextInput::stepAscii() {
    if (isWide(kind_) || kind_ == ENCODING_CONVERTER || units_ == nullptr) return false;
    if (windowEnd_ != decodedEnd_ || afterCarriageReturn_) return false;
    char16_t* const begin = units_.get();
    char16_t* out = begin;
    while (out - begin < LONGEST_STEP && bytes_.need(1)) {
        const std::uint8_t byte = *bytes_.begin();
        if (byte < 0x20 || byte > 0x7E || (byte == '<' && out != begin)) break;
        bytes_.consume(1);
        *out++ = byte;
        if (byte == '>') break;
    }
    if (out == begin) return false;
    window_ = counted_ = begin;
    windowEnd_ = decodedEnd_ = columnStop_ = out;
    unitsRead_ += static_cast<std::uint64_t>(out - begin);
    return true;
}

/// Decodes the next bytes into units_. False at the end of input; the result may be empty after a
/// line end.
bool TextInput::decodeMore() {
    if (units_ == nullptr)
        units_ =
            std::make_unique_for_overwrite<char16_t[]>(ByteInput::BLOCK + ByteInput::SLACK + 1);
    char16_t* const begin = units_.get();
    char16_t* end = begin;
    window_ = windowEnd_ = decodedEnd_ = counted_ = begin;
    columnStop_ = nullptr;
    if (stepping_) {
        end = decodeStep(begin);
    } else {
        // What is there comes first: only an unfinished character waits for the stream.
        while ((end = decodeRest(begin)) == begin)
            if (!bytes_.fill(false) && bytes_.size() == 0) return false;
    }
    if (end == begin) return false;
    normaliseLineEnds(begin, end);
    return true;
}

char16_t* TextInput::decodeRest(char16_t* out) {
    const std::uint8_t* in = bytes_.begin();
    char16_t* const end = decodeBlock(kind_, in, bytes_.end(), bytes_.atEnd(), out, hasBreaks_);
    bytes_.consume(static_cast<std::size_t>(in - bytes_.begin()));
    return end;
}

/// One character, or what one broken sequence gives.
char16_t* TextInput::decodeStep(char16_t* out) {
    char16_t* end = out;
    for (std::size_t count = 1; end == out; ++count) {
        const bool final = !bytes_.need(count);
        if (final && bytes_.size() == 0) return out;
        const std::uint8_t* in = bytes_.begin();
        end = decodeBlock(kind_, in, in + (final ? bytes_.size() : count), final, out, hasBreaks_);
        bytes_.consume(static_cast<std::size_t>(in - bytes_.begin()));
    }
    return end;
}

void TextInput::normaliseLineEnds(char16_t* begin, char16_t* end) {
    window_ = begin;
    windowEnd_ = decodedEnd_ = end;
    if (!hasBreaks_ && !afterCarriageReturn_) return;
    if (afterCarriageReturn_) {
        afterCarriageReturn_ = false;
        if (*begin == LF || *begin == NEL) ++window_;
    }
    char16_t* from = begin + (window_ - begin);
    char16_t* to = from;  // U+0085 and U+2028 are the other line ends found below
    const char16_t* none = nullptr;
    for (;;) {
        const auto run = static_cast<std::size_t>(findLineBreakUnit(from, end) - from);
        if (to != from) std::char_traits<char16_t>::move(to, from, run);
        to += run;
        from += run;
        if (from == end) break;
        const char16_t unit = *from++;
        if (unit == NONE) {
            if (none == nullptr) none = to;
            *to++ = NONE;
            continue;
        }
        *to++ = LF;
        if (unit != CR) continue;
        if (from == end)
            afterCarriageReturn_ = true;
        else if (*from == LF || *from == NEL)
            ++from;
    }
    decodedEnd_ = to;
    windowEnd_ = none != nullptr ? none : to;
}

/// Where elements are asked for their positions one after the other, the units that are no columns
/// are noted some dozens at a time, and up to the next of them columns are a difference. Counting
/// each stretch for itself took a tenth of the time in which a tree loads.
void TextInput::countBeyondStop(const char16_t* place) {
    constexpr std::ptrdiff_t FAR = 4096;
    if (columnStop_ == nullptr) {
        stops_.count = nextStop_ = 0;
        stopsEnd_ = counted_;
    }
    if (place - stopsEnd_ > FAR) return countFar(place);
    for (;;) {
        for (; nextStop_ < stops_.count; ++nextStop_) {
            columnStop_ = stops_.places[nextStop_];
            if (place <= columnStop_) return countColumns(place);
            countColumns(columnStop_);
            ++counted_;
            if (*columnStop_ != LF) continue;
            line_ = saturated(static_cast<std::uint64_t>(line_) + 1);
            column_ = 0;
        }
        columnStop_ = stopsEnd_;
        if (place <= columnStop_) return countColumns(place);
        stopsEnd_ = findColumnStops(stopsEnd_, windowEnd_, stops_);
        nextStop_ = 0;
    }
}

void TextInput::countFar(const char16_t* place) {
    const LineCount count = countLines(counted_, place);
    if (count.lines != 0) {
        line_ = saturated(static_cast<std::uint64_t>(line_) + count.lines);
        column_ = 0;
    }
    addColumns(count.charactersAfterLast);
    counted_ = place;
    columnStop_ = nullptr;
}

}  // namespace RynCommon
