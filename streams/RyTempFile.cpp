// Temporary files.
//
// A name is reserved by creating the file, which fails when the name is taken; so processes that
// share a directory need no lock between them. The number in a name is the process's own and a
// counter, which starts somewhere else in each process: process numbers come again, and are the
// same in several containers that share a directory.
#include <RynCommon/RyTempFile.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <mutex>
#include <random>

#include "core/ErrorLocations.h"
#include "core/Immortal.h"
#include "core/MemoryCheck.h"
#include "platform/TempFiles.h"
#include "streams/RawInflate.h"

namespace RynCommon {

namespace {

/// As many as there are numbers for one process.
constexpr int MOST_TAKEN_NAMES = 65'536;
constexpr int MOST_FAILED_OPENS = 100;

std::string toUtf8(const UnicodeString& text) {
    std::string bytes;
    text.toUTF8String(bytes);
    return bytes;
}

/// A null text is bogus.
UnicodeString fromUtf8(const char* text) {
    UnicodeString result;
    if (text == nullptr)
        result.setToBogus();
    else
        result = takeWhole(UnicodeString::fromUTF8(text));
    return result;
}

/// `between` stands between the path and the system's text.
[[noreturn]] void throwFileError(unsigned short code, const UnicodeString& path,
                                 const UnicodeString& between, const std::error_code& error) {
    throwIoError(code, LOCATION_TEMP_FILE,
                 path + between + UnicodeString::fromUTF8(error.message()));
}

/// The state of the process: hands out names, one caller at a time.
class Names {
public:
    const UnicodeString& getDirectory() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return findDirectory();
    }

    UnicodeString create(const UnicodeString& dir, const UnicodeString& prefix,
                         const UnicodeString& suffix) {
        const std::lock_guard<std::mutex> lock(mutex_);
        const UnicodeString& folder = dir.isBogus() ? findDirectory() : dir;
        int taken = 0;
        int failed = 0;
        while (true) {
            const UnicodeString path =
                takeWhole(UnicodeString(folder).append(prefix).append(makeNumber()).append(suffix));
            const std::error_code error = platform::createNewFile(toUtf8(path));
            if (!error) return path;
            if (error == std::errc::file_exists ? ++taken == MOST_TAKEN_NAMES
                                                : ++failed == MOST_FAILED_OPENS)
                throwFileError(IO_CANNOT_CREATE_TEMP, path, u" (cannot create)\n", error);
        }
    }

private:
    const UnicodeString& findDirectory() {
        if (!directory_.isEmpty()) return directory_;
        const std::string bytes = platform::getTempDirectory();
        UnicodeString directory = takeWhole(UnicodeString::fromUTF8(bytes));
        // A path that is not UTF-8 has no text that leads there.
        if (toUtf8(directory) != bytes) directory = u"/tmp/";
        directory_ = std::move(directory);
        return directory_;
    }

    UnicodeString makeNumber() {
        if (!seeded_) {
            const auto now = std::chrono::system_clock::now().time_since_epoch().count();
            counter_ = static_cast<std::uint32_t>(
                std::minstd_rand(static_cast<std::uint32_t>(now ^ now >> 32))());
            seeded_ = true;
        }
        char text[32];
        const int length = std::snprintf(
            text, sizeof text, "%03llx_%04x",
            static_cast<unsigned long long>(platform::getProcessNumber()), counter_++ & 0xFFFFu);
        return UnicodeString(text, length, US_INV);
    }

    std::mutex mutex_;
    UnicodeString directory_;
    std::uint32_t counter_ = 0;
    bool seeded_ = false;
};

/// Static destructors may still create and remove files.
Names& getNames() {
    static Immortal<Names> names;
    return names.get();
}

}  // namespace

RyTempFile::RyTempFile() = default;
RyTempFile::RyTempFile(const char* dir, const char* prefix, const char* suffix)
    : path_(getTempFile(dir, prefix, suffix)) {}
RyTempFile::RyTempFile(const UnicodeString& dir, const UnicodeString& prefix,
                       const UnicodeString& suffix)
    : path_(getTempFile(dir, prefix, suffix)) {}
RyTempFile::RyTempFile(const RyTempFile& other) = default;
RyTempFile& RyTempFile::operator=(const RyTempFile& other) = default;

RyTempFile::~RyTempFile() noexcept(false) {
    const bool mayThrow = std::uncaught_exceptions() == 0;
    try {
        remove();
    } catch (...) {
        if (mayThrow) throw;
    }
}

RyCStr RyTempFile::getFileName() const {
    return path_;
}

RyCStr RyTempFile::releaseFileName() {
    const RyCStr path = path_;
    path_.remove();
    return path;
}

RyCStr RyTempFile::setFileName(const char* path) {
    return setFileName(fromUtf8(path));
}

RyCStr RyTempFile::setFileName(const UnicodeString& path) {
    remove();
    path_ = path.isBogus() ? UnicodeString() : path;
    return path_;
}

RyCStr RyTempFile::setFileName(const char* dir, const char* prefix, const char* suffix) {
    return setFileName(fromUtf8(dir), fromUtf8(prefix), fromUtf8(suffix));
}

RyCStr RyTempFile::setFileName(const UnicodeString& dir, const UnicodeString& prefix,
                               const UnicodeString& suffix) {
    remove();
    // The name is free now: should the next line throw, it may be somebody else's by the time that
    // this object ends.
    path_.remove();
    path_ = getTempFile(dir, prefix, suffix);
    return path_;
}

void RyTempFile::remove() const {
    if (!isTempFile()) return;
    const std::error_code error = platform::removeFile(toUtf8(path_));
    if (error) throwFileError(IO_CANNOT_REMOVE_TEMP, path_, u": ", error);
}

bool RyTempFile::inflate(const unsigned char* data, unsigned int size) const {
    std::error_code error;
    const std::unique_ptr<std::ostream> out = platform::openTempFile(toUtf8(path_), error);
    return out != nullptr && inflateRaw(*out, data, size) && out->flush().good();
}

RyCStr RyTempFile::getTempDirectory() {
    return getNames().getDirectory();
}

RyCStr RyTempFile::getTempFile(const char* dir, const char* prefix, const char* suffix) {
    return getTempFile(fromUtf8(dir), fromUtf8(prefix), fromUtf8(suffix));
}

RyCStr RyTempFile::getTempFile(const UnicodeString& dir, const UnicodeString& prefix,
                               const UnicodeString& suffix) {
    return getNames().create(dir, prefix.isBogus() ? UnicodeString() : prefix,
                             suffix.isBogus() ? UnicodeString() : suffix);
}

bool RyTempFile::removeTempFile(const char* path) {
    return removeTempFile(fromUtf8(path));
}

bool RyTempFile::removeTempFile(const UnicodeString& path) {
    return !platform::removeFile(toUtf8(path));
}

bool RyTempFile::inflate(std::ostream& out, const unsigned char* data, unsigned int size) {
    return inflateRaw(out, data, size);
}

}  // namespace RynCommon
