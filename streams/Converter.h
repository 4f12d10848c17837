// Decoders and encoders between bytes and UTF-16 units, a block at a time.
//
// Both directions keep what a block cuts in two (a multi-byte character, a surrogate pair, a shift
// state) until the next call, so blocks may end anywhere. The decoder is an interface because
// encodings differ in what decodes them fastest; openDecoder() is the one place that chooses.
#pragma once

#include <memory>
#include <string_view>

#include <unicode/localpointer.h>
#include <unicode/ucnv.h>

namespace RynCommon::streams {

enum class Conversion : unsigned char {
    SourceUsed,  ///< all of the source is taken in
    TargetFull,  ///< there is more to come; call again with more room
    Failed       ///< the data ends here
};

/// From bytes to units. A sequence that is no character becomes U+FFFD; a byte that breaks a
/// sequence is not taken with it.
class Decoder {
public:
    virtual ~Decoder() = default;

    /// Takes bytes from `from` and stores units at `to`; both move. With `last` the source is
    /// complete: what is cut at its end becomes U+FFFD, and after SourceUsed the decoder is back in
    /// its initial state. At least two units of room are needed for progress.
    virtual Conversion decode(const char*& from, const char* fromEnd, char16_t*& to,
                              char16_t* toEnd, bool last) = 0;
};

/// The decoder of a named encoding; null for a name that openConverter() refuses.
std::unique_ptr<Decoder> openDecoder(std::string_view encoding);

/// From units to bytes.
class Encoder {
public:
    /// A character that the encoding lacks, or half a surrogate pair, becomes U+3013, else "?",
    /// else the encoding's own substitute; with `strict` it ends the data. Names without a byte
    /// order ("UTF-16", "UTF-32") mean little-endian, and no name writes a byte-order mark by
    /// itself.
    Encoder(std::string_view encoding, bool strict);

    bool isOpen() const { return converter_.isValid(); }
    /// Whether a byte-order mark has a meaning in the encoding.
    bool isUnicode() const { return unicode_; }

    /// Takes units from `from` and stores bytes at `to`; both move. With `last`, what is held back
    /// comes out and the encoder returns to its initial state. Only to be called when open.
    Conversion encode(const char16_t*& from, const char16_t* fromEnd, char*& to, char* toEnd,
                      bool last);

private:
    icu::LocalUConverterPointer converter_;
    bool unicode_ = false;
};

}  // namespace RynCommon::streams
