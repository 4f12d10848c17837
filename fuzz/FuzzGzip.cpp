// Fuzz target of the gzip streams, against zlib itself. The input is read as a stream that can
// seek, as one that cannot, and as a file; what is written through the output stream reads back the
// same.
//
// The first byte of the input chooses the size of the reads, the rest is the data.
#include <RynCommon/RyGzipStream.h>
#include <sys/mman.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "tests/streams/ByteSources.h"

using namespace RynCommon;

namespace {

/// Bombs are not unpacked beyond this.
constexpr std::size_t LIMIT = 80'000;

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

std::string read(std::istream& in, std::size_t step) {
    std::string bytes;
    std::string piece(step, '\0');
    while (in.good() && bytes.size() < LIMIT) {
        in.read(piece.data(), static_cast<std::streamsize>(step));
        bytes.append(piece, 0, static_cast<std::size_t>(in.gcount()));
    }
    require(!in.bad(), "a stream turned bad");
    bytes.resize(std::min(bytes.size(), LIMIT));
    return bytes;
}

bool hasMagic(const std::string& data, std::size_t at) {
    return data.size() >= at + 2 && data[at] == '\x1F' && data[at + 1] == '\x8B';
}

/// zlib's reading of the members from the start on.
std::string readByZlib(const std::string& data, bool allMembers) {
    z_stream stream{};
    inflateInit2(&stream, 31);
    inflateValidate(&stream, 0);
    std::string out(LIMIT, '\0');
    std::string in = data;
    stream.next_in = reinterpret_cast<Bytef*>(in.data());
    stream.avail_in = static_cast<uInt>(in.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = LIMIT;
    while (inflate(&stream, Z_SYNC_FLUSH) == Z_STREAM_END && allMembers &&
           hasMagic(data, data.size() - stream.avail_in)) {
        Bytef* const next = stream.next_out;
        const uInt room = stream.avail_out;
        inflateReset(&stream);
        stream.next_out = next;
        stream.avail_out = room;
    }
    out.resize(LIMIT - stream.avail_out);
    inflateEnd(&stream);
    return out;
}

std::string readAsFile(const std::string& data, std::size_t step) {
    const int file = memfd_create("gzip", MFD_CLOEXEC);
    require(file >= 0, "no memory file");
    require(write(file, data.data(), data.size()) == static_cast<ssize_t>(data.size()), "write");
    RyGzipStream in(("/proc/self/fd/" + std::to_string(file)).c_str());
    require(in.is_open(), "the file does not open");
    std::string bytes = read(in, step);
    close(file);
    return bytes;
}

std::string passed(const std::string& data) {
    return data.substr(0, LIMIT);
}

void checkReading(const std::string& data, std::size_t step) {
    const bool isMember = data.size() >= 4 && hasMagic(data, 0) && data[2] == 8 &&
                          (static_cast<unsigned char>(data[3]) & 0xE0) == 0;
    const std::string expected = isMember ? readByZlib(data, false) : passed(data);

    std::istringstream source(data);
    RyGzipStream whole(source);
    require(read(whole, step) == expected, "differs from zlib");

    ChunkSource chunks(data, step);
    std::istream unseekable(&chunks);
    RyGzipStream streamed(unseekable);
    require(read(streamed, 5'000) == expected, "differs when the source cannot seek");

    const std::string fromFile = hasMagic(data, 0) ? readByZlib(data, true) : passed(data);
    require(readAsFile(data, step) == fromFile, "a file differs from zlib");
}

void checkWriting(const std::string& data, std::size_t step) {
    std::stringstream packed;
    {
        RyGzipOStream out(packed);
        for (std::size_t at = 0; at < data.size(); at += step) out << data.substr(at, step);
    }
    RyGzipStream in(packed);
    require(read(in, 4'096) == passed(data), "does not read back");
    require(readByZlib(packed.str(), false) == passed(data), "zlib does not read it back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    static constexpr std::size_t STEPS[] = {1, 10, 100, 4'095, 4'096, 4'097, 20'000, LIMIT};
    const std::size_t step = STEPS[data[0] & 7];
    const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    checkReading(bytes, step);
    checkWriting(bytes, step);
    return 0;
}
