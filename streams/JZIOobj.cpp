// The readers that compound files are read through: over files and over standard streams.
#include <RynCommon/JZIOobj.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "platform/RandomFile.h"

namespace RynCommon {

namespace {

/// Reads below this size go through the buffer, which is as large.
constexpr std::size_t BUFFER_SIZE = 4096;

/// The target of a seek from `origin`; nothing before the start or beyond what 63 bits count.
std::optional<std::uint64_t> getSeekTarget(std::uint64_t origin, std::int64_t offset) {
    std::int64_t target = 0;
    if (origin > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) ||
        __builtin_add_overflow(static_cast<std::int64_t>(origin), offset, &target) || target < 0) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(target);
}

std::string toUtf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

// A stream may be told to throw at its end or at errors; what it throws ends here.

/// Leaves the end of the stream behind. False for a stream without a buffer.
bool clearState(std::istream& stream) {
    try {
        stream.clear();
        return stream.good();
    } catch (...) {
        return false;
    }
}

}  // namespace

JZIOobj::~JZIOobj() = default;

struct JZFileIOobj::Impl {
    using Mode = platform::RandomFile::Mode;

    Impl(const std::string& path, Mode mode)
        : file(path, mode), writing(mode == Mode::CREATE), knownSize(file.getSize()) {}

    /// Whether a file that is read reaches up to `target`. The system is asked again only when the
    /// size known so far does not.
    bool reaches(std::uint64_t target) {
        if (target > knownSize) knownSize = file.getSize();
        return target <= knownSize;
    }

    /// The buffered bytes at the position.
    std::size_t takeBuffered(char* target, std::size_t count) {
        if (position < bufferStart || position - bufferStart >= buffered) return 0;
        const std::size_t skipped = position - bufferStart;
        const std::size_t taken = std::min(count, buffered - skipped);
        std::memcpy(target, buffer.get() + skipped, taken);
        position += taken;
        return taken;
    }

    void fillBuffer() {
        if (!buffer) buffer = std::make_unique_for_overwrite<char[]>(BUFFER_SIZE);
        bufferStart = position;
        buffered = file.readAt(position, buffer.get(), BUFFER_SIZE);
    }

    std::size_t read(char* target, std::size_t count) {
        std::size_t taken = takeBuffered(target, count);
        if (taken < count) taken += readOn(target + taken, count - taken);
        expected = position;
        return taken;
    }

    /// Small pieces fill the buffer when they follow one another. After a jump they do not: who
    /// jumps from piece to piece would read a buffer for each.
    std::size_t readOn(char* target, std::size_t count) {
        if (count < BUFFER_SIZE && position == expected) {
            fillBuffer();
            return takeBuffered(target, count);
        }
        const std::size_t got = file.readAt(position, target, count);
        position += got;
        return got;
    }

    platform::RandomFile file;
    bool writing;
    bool failed = false;  ///< something could not be written
    std::uint64_t knownSize;
    std::uint64_t position = 0;
    std::uint64_t expected = 0;  ///< where the last read ended
    std::unique_ptr<char[]> buffer;
    std::uint64_t bufferStart = 0;
    std::size_t buffered = 0;
};

JZFileIOobj::JZFileIOobj(const char* path, const char* mode) {
    if (path == nullptr || mode == nullptr) return;
    const std::string_view text(mode);
    if (text != "rb" && text != "wb") return;
    impl_ = std::make_unique<Impl>(path, text == "rb" ? Impl::Mode::READ : Impl::Mode::CREATE);
    if (!impl_->file.isOpen()) impl_.reset();
}

JZFileIOobj::JZFileIOobj(const UnicodeString& path, const char* mode)
    // A name that holds a NUL would be cut there and open another file.
    : JZFileIOobj(path.indexOf(u'\0') < 0 ? toUtf8(path).c_str() : nullptr, mode) {}

JZFileIOobj::~JZFileIOobj() = default;

bool JZFileIOobj::isOpen() const {
    return impl_ != nullptr;
}

std::size_t JZFileIOobj::read(void* buffer, std::size_t count) {
    if (!isOpen() || impl_->writing || buffer == nullptr) return 0;
    return impl_->read(static_cast<char*>(buffer), count);
}

bool JZFileIOobj::seek(std::int64_t offset, int whence) {
    if (!isOpen()) return false;
    std::uint64_t origin = 0;
    if (whence == SEEK_CUR) {
        origin = impl_->position;
    } else if (whence == SEEK_END) {
        origin = impl_->file.getSize();
    } else if (whence != SEEK_SET) {
        return false;
    }
    const std::optional<std::uint64_t> target = getSeekTarget(origin, offset);
    if (!target || (!impl_->writing && !impl_->reaches(*target))) return false;
    impl_->position = *target;
    return true;
}

std::size_t JZFileIOobj::write(const void* buffer, std::size_t count) {
    if (!isOpen() || !impl_->writing || buffer == nullptr) return 0;
    const std::size_t written = impl_->file.writeAt(impl_->position, buffer, count);
    impl_->position += written;
    impl_->failed = impl_->failed || written < count;
    return written;
}

bool JZFileIOobj::close() {
    const std::unique_ptr<Impl> closed = std::move(impl_);
    return closed != nullptr && closed->file.close() && !closed->failed;
}

JZStreamIOobj::JZStreamIOobj(std::istream& stream) : stream_(stream) {}

JZStreamIOobj::~JZStreamIOobj() = default;

bool JZStreamIOobj::isOpen() const {
    return !stream_.bad();
}

std::size_t JZStreamIOobj::read(void* buffer, std::size_t count) {
    if (!isOpen() || buffer == nullptr || !clearState(stream_)) return 0;
    constexpr std::size_t MOST = std::numeric_limits<std::streamsize>::max();
    try {
        stream_.read(static_cast<char*>(buffer),
                     static_cast<std::streamsize>(std::min(count, MOST)));
    } catch (...) {
    }
    return static_cast<std::size_t>(stream_.gcount());
}

bool JZStreamIOobj::seek(std::int64_t offset, int whence) {
    if (!isOpen() || (whence != SEEK_SET && whence != SEEK_CUR && whence != SEEK_END)) return false;
    const std::ios_base::seekdir direction = whence == SEEK_SET   ? std::ios_base::beg
                                             : whence == SEEK_CUR ? std::ios_base::cur
                                                                  : std::ios_base::end;
    if (!clearState(stream_)) return false;
    try {
        stream_.seekg(offset, direction);
        return !stream_.fail();
    } catch (...) {
        return false;
    }
}

}  // namespace RynCommon
