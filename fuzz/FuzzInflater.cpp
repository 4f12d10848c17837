// Fuzz target of the inflater stream: it inflates what zlib inflates, however it is read, the same
// again after a reset, and what was read can be put back.
#include <RynCommon/RyInflaterStream.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

using namespace RynCommon;

namespace {

/// Bombs are not unpacked beyond this.
constexpr std::size_t LIMIT = 80'000;

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

std::string inflateByZlib(const std::string& data) {
    z_stream stream{};
    inflateInit2(&stream, -15);
    std::string in = data;
    std::string out(LIMIT, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(in.data());
    stream.avail_in = static_cast<uInt>(in.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = LIMIT;
    inflate(&stream, Z_SYNC_FLUSH);
    out.resize(LIMIT - stream.avail_out);
    inflateEnd(&stream);
    return out;
}

/// Puts up to ten bytes back and takes them again.
void checkPutBack(std::istream& in, const std::string& bytes) {
    const auto state = in.rdstate();
    const std::size_t count = std::min<std::size_t>(bytes.size(), 10);
    in.clear();
    for (std::size_t i = 1; i <= count; ++i) {
        in.unget();
        require(in.peek() == static_cast<unsigned char>(bytes[bytes.size() - i]), "put-back");
    }
    in.ignore(static_cast<std::streamsize>(count));
    in.clear(state);
}

/// Reads with steps that the data chooses.
std::string read(std::istream& in, const std::string& steps) {
    std::string bytes;
    std::string piece(70'000, '\0');
    for (std::size_t i = 0; in.good() && bytes.size() < LIMIT; ++i) {
        const unsigned choice = static_cast<unsigned char>(steps[i % steps.size()]);
        const std::size_t step = choice < 200 ? 4'000 + choice : 1 + (choice - 200) * 1'250;
        in.read(piece.data(), static_cast<std::streamsize>(step));
        bytes.append(piece, 0, static_cast<std::size_t>(in.gcount()));
        checkPutBack(in, bytes);
    }
    require(!in.bad(), "the stream turned bad");
    bytes.resize(std::min(bytes.size(), LIMIT));
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::string expected = inflateByZlib(bytes);
    RyInflaterStream in(bytes.data(), bytes.size(), size % 2 == 0);
    const std::string steps = bytes.empty() ? "x" : bytes;
    require(read(in, steps) == expected, "differs from zlib");
    in.reset();
    require(read(in, std::string("\xFF\x60")) == expected, "differs after a reset");
    in.reset();
    in.ignore(static_cast<std::streamsize>(expected.size() / 2));
    in.reset();
    require(read(in, steps) == expected, "differs after a reset on the way");
    return 0;
}
