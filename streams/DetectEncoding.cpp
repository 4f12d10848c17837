// Guessing the encoding of bytes.
#include <RynCommon/RyDMCStream.h>

#include <unicode/ucsdet.h>
#include <unicode/utf8.h>

#include <limits>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/Files.h"
#include "streams/EncodingName.h"

namespace RynCommon {

namespace {

constexpr std::size_t SAMPLE_SIZE = 64 * 1024;

struct Sample {
    std::string bytes;
    /// Whether the data goes on behind the sample, so that its last character may be cut.
    bool cut = false;
};

struct Mark {
    std::string_view bytes;
    const char* name;
};

/// The longer marks of UTF-32 begin like those of UTF-16, so they come first.
constexpr Mark MARKS[] = {
    {{"\xEF\xBB\xBF", 3}, "UTF-8"},    {{"\xFF\xFE\0\0", 4}, "UTF-32LE"},
    {{"\0\0\xFE\xFF", 4}, "UTF-32BE"}, {{"\xFF\xFE", 2}, "UTF-16LE"},
    {{"\xFE\xFF", 2}, "UTF-16BE"},     {{"\x84\x31\x95\x33", 4}, "GB18030"},
};

Sample readSample(std::istream& in) {
    Sample sample;
    sample.bytes.resize(SAMPLE_SIZE);
    const std::streampos start = in.tellg();
    in.read(sample.bytes.data(), static_cast<std::streamsize>(SAMPLE_SIZE));
    sample.bytes.resize(static_cast<std::size_t>(in.gcount()));
    sample.cut = sample.bytes.size() == SAMPLE_SIZE;
    if (start != std::streampos(-1)) {
        in.clear();
        in.seekg(start);
    }
    return sample;
}

bool isUtf8(const Sample& sample) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(sample.bytes.data());
    auto length = static_cast<std::int32_t>(sample.bytes.size());
    if (sample.cut) U8_TRUNCATE_IF_INCOMPLETE(bytes, 0, length);
    for (std::int32_t i = 0; i < length;) {
        UChar32 c = 0;
        U8_NEXT(bytes, i, length, c);
        if (c < 0) return false;
    }
    return true;
}

/// NUL, SO, SI and ESC are valid in UTF-8 but hardly occur in text: they are signs of wide units
/// without a mark, or of the 7-bit encodings with shifts.
bool hasForeignControls(const std::string& bytes) {
    return bytes.find_first_of(std::string_view("\0\x0E\x0F\x1B", 4)) != std::string::npos;
}

/// Without a mark the detector always offers UTF-16 with little confidence.
bool isWideOrShifted(std::string_view name, std::int32_t confidence) {
    constexpr std::int32_t LIKELY = 50;
    return confidence >= LIKELY && (name.starts_with("UTF-16") || name.starts_with("UTF-32") ||
                                    name.starts_with("ISO-2022"));
}

bool isAnything(std::string_view, std::int32_t) {
    return true;
}

/// The best guess of ICU's detector that `accept` takes and that the conversion streams can read;
/// empty when there is none.
template <class Accept>
std::string askDetector(const Sample& sample, Accept accept) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUCharsetDetectorPointer detector(ucsdet_open(&status));
    if (U_FAILURE(status)) return {};
    ucsdet_setText(detector.getAlias(), sample.bytes.data(),
                   static_cast<std::int32_t>(sample.bytes.size()), &status);
    std::int32_t count = 0;
    const UCharsetMatch** const matches = ucsdet_detectAll(detector.getAlias(), &count, &status);
    for (std::int32_t i = 0; U_SUCCESS(status) && i < count; ++i) {
        const char* const name = ucsdet_getName(matches[i], &status);
        const std::int32_t confidence = ucsdet_getConfidence(matches[i], &status);
        if (U_FAILURE(status) || !accept(name, confidence)) continue;
        if (streams::openConverter(name).isValid()) return name;
    }
    return {};
}

std::string guessUnmarked(const Sample& sample) {
    if (!isUtf8(sample)) return askDetector(sample, isAnything);
    if (!hasForeignControls(sample.bytes)) return "UTF-8";
    const std::string name = askDetector(sample, isWideOrShifted);
    return name.empty() ? "UTF-8" : name;
}

std::string guess(const Sample& sample, bool& marked) {
    marked = false;
    if (sample.bytes.empty()) return {};
    for (const Mark& mark : MARKS) {
        marked = sample.bytes.starts_with(mark.bytes);
        if (marked) return mark.name;
    }
    return guessUnmarked(sample);
}

}  // namespace

bool RyDMCStream::detectEncoding(std::istream* source, UnicodeString& name, bool& flag) {
    name.remove();
    flag = false;
    if (source == nullptr) return false;
    try {
        name = UnicodeString::fromUTF8(guess(readSample(*source), flag));
    } catch (const std::ios_base::failure&) {
        return false;
    }
    return !name.isEmpty();
}

bool RyDMCStream::detectEncoding(const char* path, UnicodeString& name, bool& flag) {
    std::error_code error;
    const std::unique_ptr<std::istream> file =
        path == nullptr ? nullptr : platform::openInputFile(path, error);
    return detectEncoding(file.get(), name, flag);
}

}  // namespace RynCommon
