// Compressed data for tests, made and unpacked by zlib alone.
#pragma once

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <istream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace RynCommon {

/// Window bits of zlib for RFC 1951 data by itself and for RFC 1952 members.
enum class Wrapper : int { Raw = -15, Gzip = 31 };

inline std::string deflateData(std::string_view data, Wrapper wrapper = Wrapper::Raw) {
    z_stream stream{};
    if (deflateInit2(&stream, 6, Z_DEFLATED, static_cast<int>(wrapper), 8, Z_DEFAULT_STRATEGY) !=
        Z_OK) {
        throw std::runtime_error("deflateInit2");
    }
    std::string out(deflateBound(&stream, static_cast<uLong>(data.size())) + 32, '\0');
    stream.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    const int status = deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    if (status != Z_STREAM_END) throw std::runtime_error("deflate");
    return out;
}

/// What zlib makes of the data, as far as it gets, of at most `most` bytes.
struct Inflated {
    std::string bytes;
    bool complete = false;
};

inline Inflated inflateData(std::string_view data, Wrapper wrapper = Wrapper::Raw,
                            std::size_t most = 1 << 18) {
    z_stream stream{};
    if (inflateInit2(&stream, static_cast<int>(wrapper)) != Z_OK) {
        throw std::runtime_error("inflateInit2");
    }
    Inflated result{std::string(most, '\0')};
    stream.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.bytes.data());
    stream.avail_out = static_cast<uInt>(most);
    result.complete = inflate(&stream, Z_SYNC_FLUSH) == Z_STREAM_END;
    result.bytes.resize(stream.total_out);
    inflateEnd(&stream);
    return result;
}

/// Text that compresses about as well as markup does; the same for the same arguments.
inline std::string makeText(std::size_t size, std::uint32_t seed = 1) {
    static constexpr std::string_view WORDS[] = {"<w:p>", "<w:t>",    "</w:t>", "layout",
                                                 "page ", " of the ", "\n",     "column"};
    std::string text;
    while (text.size() < size) {
        seed = seed * 1664525 + 1013904223;
        text += seed >> 30 != 0 ? std::string(WORDS[seed >> 20 & 7])
                                : std::string(1, static_cast<char>(seed >> 12));
    }
    text.resize(size);
    return text;
}

/// Bytes that do not compress; the same for the same arguments.
inline std::string makeRandom(std::size_t size, std::uint32_t seed = 1) {
    std::string noise(size, '\0');
    for (char& c : noise) {
        seed = seed * 1664525 + 1013904223;
        c = static_cast<char>(seed >> 24);
    }
    return noise;
}

/// Reads to the end in pieces of `step` bytes; the ways a stream can be read differ inside.
inline std::string readInSteps(std::istream& in, std::size_t step) {
    std::string bytes;
    std::string piece(step, '\0');
    do {
        in.read(piece.data(), static_cast<std::streamsize>(step));
        bytes.append(piece, 0, static_cast<std::size_t>(in.gcount()));
    } while (in.good());
    return bytes;
}

}  // namespace RynCommon
