// Memory streams, compressed data, encodings, temporary files.
#include <RynCommon/RyDMCStream.h>
#include <RynCommon/RyGzipStream.h>
#include <RynCommon/RyInflaterStream.h>
#include <RynCommon/RyMemStream.h>
#include <RynCommon/RyTempFile.h>
#include <gtest/gtest.h>

#include <fstream>

#include "tests/allocation/Inputs.h"

namespace allocation {
namespace {

using namespace RynCommon;

const std::string TEXT = repeat("some text with a needle in it, and some more of it. ", 200);

/// What a stream gave, or that it turned bad before its end.
constexpr char BAD[] = "(bad)";

bool isBad(const std::string& result) {
    return result == BAD;
}

/// Reads through the stream's own functions, which turn exceptions of the buffer into its state.
std::string readStream(std::istream& in) {
    std::string result = paused([] { return std::string(1 << 17, '\0'); });
    in.read(result.data(), static_cast<std::streamsize>(result.size()));
    result.resize(static_cast<std::size_t>(in.gcount()));
    return in.bad() ? paused([] { return std::string(BAD); }) : result;
}

TEST(Allocation, MemoryStreams) {
    const auto writes = []() -> Action {
        return [] {
            RyMemStream stream(nullptr, 256);
            stream.append(TEXT);
            stream.writeStr("and this");
            if (!stream.good()) return paused([] { return std::string(BAD); });
            const bool found = stream.begin().searchSeek("and this");
            const std::streamoff place = stream.tellg();
            std::string all = paused([] { return std::string(); });
            paused([&] { all.reserve(1 << 17); });
            stream.appendToString(all);
            return paused([&] { return std::to_string(found) + std::to_string(place) + all; });
        };
    };
    const auto source = []() -> Action {
        return [] {
            const auto in = openBytes(TEXT);
            RyMemStream stream(in.get(), 128);
            const bool found = stream.skipSeek("needle");
            const std::string rest = readStream(stream);
            return paused([&] { return isBad(rest) ? rest : std::to_string(found) + rest; });
        };
    };
    const auto copies = []() -> Action {
        return [] {
            const auto in = openBytes(TEXT);
            RyMemStream stream(nullptr, 512);
            stream.copyStream(*in, TEXT.size());
            RyMemStream copy(stream);
            copy.trim(1000);
            const char* bytes = nullptr;
            const std::size_t size = stream.getBuffer(bytes);
            return paused([&] { return std::string(bytes, size) + std::to_string(copy.length()); });
        };
    };
    sweep({{"writing and searching", writes, Ending::VALUE, isBad},
           {"reading a source", source, Ending::VALUE, isBad},
           {"copying", copies, Ending::VALUE, isBad}});
}

std::string compressed() {
    std::ostringstream out;
    {
        RyGzipOStream gzip(out);
        gzip << TEXT;
    }
    return out.str();
}

TEST(Allocation, CompressedData) {
    const auto write = []() -> Action {
        return [] {
            const auto out = paused([] { return std::make_unique<FixedOut>(); });
            {
                RyGzipOStream gzip(*out);
                gzip.write(TEXT.data(), static_cast<std::streamsize>(TEXT.size()));
                gzip.flush();
                if (!gzip.good()) return paused([] { return std::string(BAD); });
            }
            return out->written();
        };
    };
    const auto read = [bytes = compressed()]() -> Action {
        return [bytes] {
            const auto in = openBytes(bytes);
            RyGzipStream gzip(*in);
            return gzip.is_open() ? readStream(gzip) : paused([] { return std::string(BAD); });
        };
    };
    const auto inflate = [bytes = compressed()]() -> Action {
        return [bytes] {
            RyInflaterStream in(bytes.data() + 10, bytes.size() - 18, true);
            return readStream(in);
        };
    };
    sweep({{"gzip, writing", write, Ending::VALUE, isBad},
           {"gzip, reading", read, Ending::VALUE, isBad},
           {"deflated data", inflate, Ending::VALUE, isBad}});
}

TEST(Allocation, Encodings) {
    const auto read = [](const char* encoding) {
        return [encoding]() -> Action {
            return [encoding] {
                const auto in = openBytes(TEXT);
                RyDMCStream stream(in.get(), encoding);
                return stream.is_open() ? readStream(stream)
                                        : paused([] { return std::string(BAD); });
            };
        };
    };
    const auto write = [](const char* encoding) {
        return [encoding]() -> Action {
            return [encoding, text = widen(TEXT)] {
                const auto out = paused([] { return std::make_unique<FixedOut>(); });
                bool written = false;
                {
                    RyDMCOStream stream(out.get(), encoding, true, RyDMCOStream::LF_CONVERT::LF_LF);
                    written = stream.is_open() && stream.writeString(text) && stream.flush().good();
                }
                return written ? out->written() : paused([] { return std::string(BAD); });
            };
        };
    };
    sweep({{"reading Shift_JIS", read("Shift_JIS"), Ending::VALUE, isBad},
           {"reading windows-1252", read("windows-1252"), Ending::VALUE, isBad},
           {"reading ISO-2022-JP", read("ISO-2022-JP"), Ending::VALUE, isBad},
           {"writing Shift_JIS", write("Shift_JIS"), Ending::VALUE, isBad},
           {"writing UTF-16", write("UTF-16LE"), Ending::VALUE, isBad}});
}

TEST(Allocation, TemporaryFiles) {
    const auto inflate = [bytes = compressed()]() -> Action {
        const auto data = reinterpret_cast<const unsigned char*>(bytes.data()) + 10;
        const auto size = static_cast<unsigned int>(bytes.size() - 18);
        const std::string folder = ::testing::TempDir() + "a-prefix-of-names-that-is-long-";
        return [data, size, folder] {
            const RyTempFile file(folder.c_str(), "prefix-", ".suffix");
            const bool complete = file.inflate(data, size);
            const Pause pause;
            const std::string name = file.getFileName().c_str();
            std::ifstream in(name);
            std::ostringstream content;
            content << in.rdbuf();
            const bool isPlaced = name.starts_with(folder + "prefix-") && name.ends_with(".suffix");
            return complete ? std::to_string(isPlaced) + content.str() : std::string(BAD);
        };
    };
    sweep({{"inflating into one", inflate, Ending::VALUE, isBad}});
}

}  // namespace
}  // namespace allocation
