// The decoder of double-byte encodings: Shift_JIS, EUC, GBK, Big5 and their relatives.
#pragma once

#include <memory>

#include "streams/Converter.h"
#include "streams/DoubleByteTable.h"

namespace RynCommon::streams {

/// Gives what ICU's converter for the same encoding gives, by tables as far as they reach.
class DoubleByteDecoder final : public Decoder {
public:
    /// `converter` is in its initial state and writes one U+FFFD for what is no character; `table`
    /// is made from it.
    DoubleByteDecoder(icu::LocalUConverterPointer converter,
                      std::shared_ptr<const DoubleByteTable> table);

    Conversion decode(const char*& from, const char* fromEnd, char16_t*& to, char16_t* toEnd,
                      bool last) override;

private:
    void walkTables(const char*& from, const char* fromEnd, char16_t*& to, char16_t* toEnd);
    Conversion convert(const char*& from, const char* fromEnd, char16_t*& to, char16_t* toEnd,
                       bool flush);
    Conversion convertStretch(const char*& from, const char* fromEnd, char16_t*& to,
                              char16_t* toEnd);

    icu::LocalUConverterPointer converter_;
    std::shared_ptr<const DoubleByteTable> table_;
    /// How many bytes the converter is given at least, once it is asked.
    std::ptrdiff_t stretch_;
    /// Whether the converter holds bytes or units that are to come out.
    bool holding_ = false;
};

}  // namespace RynCommon::streams
