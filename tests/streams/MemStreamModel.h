// A memory stream side by side with a string and two positions: what the stream has to do, said in
// the simplest way. The test runs it over random operations, the fuzzer over its own.
#pragma once

#include <RynCommon/RyMemStream.h>

#include <algorithm>
#include <cstdint>
#include <istream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include "tests/streams/ByteSources.h"

namespace RynCommon {

/// Reads operations and their arguments off a string of bytes; zeros follow its end.
class Operations {
public:
    explicit Operations(std::string_view bytes) : bytes_(bytes) {}

    bool isEmpty() const { return at_ >= bytes_.size(); }
    std::uint8_t next() { return isEmpty() ? 0 : static_cast<std::uint8_t>(bytes_[at_++]); }
    /// Up to twice `around`, and more often than not close to it.
    std::size_t nextLength(std::size_t around) {
        const std::size_t value = next();
        if (value < 16) return value;
        if (value < 64) return around + value - 40 < 2 * around + 24 ? around + value - 40 : 0;
        return value % (2 * around + 1);
    }
    /// Text over a small alphabet, in which patterns repeat and nearly repeat.
    std::string nextText(std::size_t length) {
        constexpr std::string_view LETTERS("aab\r\nc\0\xFF", 8);
        std::string text;
        std::uint32_t state = next() * 2654435761u + 1;
        for (; text.size() < length; state = state * 1664525u + 1013904223u)
            text += LETTERS[state >> 28 & 7];
        return text;
    }

private:
    std::string_view bytes_;
    std::size_t at_ = 0;
};

/// A source that fails at the first byte, which is not its end.
struct BrokenSource : private BreakingSource, public std::istream {
    BrokenSource() : std::istream(this) {}
};

class MemStreamModel {
public:
    explicit MemStreamModel(std::uint64_t growBytes)
        : grow_(growBytes), stream_(std::make_unique<RyMemStream>(nullptr, growBytes)) {}

    /// Runs all operations; what went wrong first, or nothing.
    std::string run(Operations operations) {
        for (int step = 0; !operations.isEmpty() && error_.empty(); ++step) {
            const int operation = operations.next() % COUNT;
            if (data_.size() > MOST_DATA) remove();
            (this->*OPERATIONS[operation])(operations);
            checkPositions();
            if (!error_.empty())
                error_ += " (operation " + std::to_string(operation) + ", step " +
                          std::to_string(step) + ", block size " + std::to_string(grow_) + ")";
        }
        if (error_.empty()) checkContent();
        return error_;
    }

private:
    using Operation = void (MemStreamModel::*)(Operations&);

    void require(bool holds, const char* what) {
        if (!holds && error_.empty()) error_ = what;
    }

    void checkContent() {
        std::string text = "before:";
        stream_->appendToString(text);
        require(text == "before:" + data_, "content differs");
        require(stream_->length() == data_.size(), "length differs");
    }

    /// Not after every operation: asking moves the areas, which must not be needed.
    void checkPositions() {
        if (++checks_ % 3 != 0) return;
        require(stream_->tellg() == toPosition(read_), "read position differs");
        require(stream_->tellp() == toPosition(write_), "write position differs");
    }

    static std::streampos toPosition(std::size_t position) {
        return static_cast<std::streamoff>(position);
    }

    void store(const std::string& text) {
        data_.replace(write_, text.size(), text);
        write_ += text.size();
    }

    void write(Operations& in) {
        const std::string text = in.nextText(in.nextLength(grow_));
        stream_->append(text);
        require(stream_->good(), "writing failed");
        store(text);
    }

    void put(Operations& in) {
        const std::string text = in.nextText(1);
        stream_->put(text[0]);
        store(text);
    }

    void read(Operations& in) {
        std::string text(in.nextLength(grow_), '?');
        stream_->read(text.data(), static_cast<std::streamsize>(text.size()));
        const auto got = static_cast<std::size_t>(stream_->gcount());
        const std::string expected = data_.substr(read_, text.size());
        require(text.substr(0, got) == expected, "reading gives other bytes");
        require(stream_->eof() == (expected.size() < text.size()), "end of data differs");
        stream_->clear();
        read_ += expected.size();
    }

    void get(Operations&) {
        const int expected = read_ < data_.size() ? static_cast<unsigned char>(data_[read_]) : EOF;
        require(stream_->rdbuf()->sgetc() == expected, "sgetc differs");
        require(stream_->rdbuf()->sbumpc() == expected, "sbumpc differs");
        if (expected != EOF) ++read_;
    }

    void stepBack(Operations& in) {
        // Another byte than the one that stands there does not replace it.
        const std::uint8_t byte = in.next();
        const int back = byte % 2 == 0 ? stream_->rdbuf()->sungetc()
                                       : stream_->rdbuf()->sputbackc(static_cast<char>(byte));
        require((back != EOF) == (read_ > 0), "stepping back gives another result");
        if (read_ > 0) --read_;
    }

    void seek(Operations& in) {
        const std::uint8_t kind = in.next();
        const auto length = static_cast<std::streamoff>(data_.size());
        std::streamoff offset = static_cast<std::streamoff>(in.nextLength(data_.size() / 2 + 2));
        if (kind >= 0xF0)
            offset = kind & 1 ? INT64_MAX - offset : INT64_MIN + offset;
        else if (kind & 0x20)
            offset = -offset;
        constexpr std::ios_base::openmode MODES[] = {std::ios_base::in, std::ios_base::out,
                                                     std::ios_base::in | std::ios_base::out};
        constexpr std::ios_base::seekdir WAYS[] = {std::ios_base::beg, std::ios_base::cur,
                                                   std::ios_base::end};
        const std::ios_base::openmode mode = MODES[kind % 3];
        const std::ios_base::seekdir way = WAYS[kind / 3 % 3];
        const std::streamoff base = way == std::ios_base::beg   ? 0
                                    : way == std::ios_base::end ? length
                                    : mode == std::ios_base::in
                                        ? static_cast<std::streamoff>(read_)
                                        : static_cast<std::streamoff>(write_);
        // Bases are small: only the sum with a huge positive offset overflows.
        const bool inside = offset >= -base && offset <= length - base;
        const std::streampos got = stream_->rdbuf()->pubseekoff(offset, way, mode);
        require(got == std::streampos(inside ? base + offset : -1), "seeking gives another result");
        if (!inside) return;
        if (mode & std::ios_base::in) read_ = static_cast<std::size_t>(base + offset);
        if (mode & std::ios_base::out) write_ = static_cast<std::size_t>(base + offset);
    }

    std::string nextPattern(Operations& in) {
        if (in.next() % 2 == 0) return in.nextText(1 + in.nextLength(3));
        const std::size_t start = std::min(in.nextLength(data_.size() / 2 + 1), data_.size());
        const std::string part = data_.substr(start, 1 + in.nextLength(grow_));
        return part.empty() ? "x" : part;
    }

    void search(Operations& in) {
        const std::string pattern = nextPattern(in);
        const std::size_t place = data_.find(pattern, read_);
        const bool found = stream_->searchSeek(pattern.data(), pattern.size());
        require(found == (place != std::string::npos), "searching gives another result");
        if (found) read_ = place;
        require(stream_->tellg() == toPosition(read_), "searching leaves another position");
        require(!stream_->searchSeek(""), "an empty pattern is found");
    }

    void skip(Operations& in) {
        const std::string pattern =
            in.next() % 2 == 0 ? nextPattern(in) : data_.substr(read_, 1 + in.nextLength(grow_));
        if (pattern.empty()) return;
        const bool stands = data_.compare(read_, pattern.size(), pattern) == 0;
        require(stream_->skipSeek(pattern.data(), pattern.size()) == stands,
                "skipping gives another result");
        if (stands) read_ += pattern.size();
    }

    void skipLine(Operations&) {
        stream_->seekEOL();
        read_ = std::min(data_.find_first_of("\r\n", read_), data_.size());
        read_ = std::min(data_.find_first_not_of("\r\n", read_), data_.size());
    }

    void trim(Operations& in) {
        const std::size_t length = in.nextLength(data_.size() / 2 + 1);
        stream_->trim(length);
        if (length >= data_.size()) return;
        data_.resize(length);
        read_ = std::min(read_, length);
        write_ = std::min(write_, length);
    }

    void remove() {
        stream_->remove();
        data_.clear();
        read_ = write_ = 0;
    }
    void removeSometimes(Operations& in) {
        if (in.next() % 4 == 0) remove();
    }

    /// At a block's end the position alone does not tell which block is being read; asking for it
    /// moves on to the next one.
    void abandon(Operations&) {
        require(stream_->tellg() == toPosition(read_), "read position differs");
        stream_->abandonBuffer();
        const std::size_t dropped = read_ - read_ % grow_;
        stream_->length();
        data_.erase(0, dropped);
        read_ -= dropped;
        write_ -= std::min(write_, dropped);
    }

    void sum(Operations&) {
        std::uint32_t expected = 0;
        for (std::size_t i = 0; i < data_.size(); ++i)
            expected += static_cast<std::uint32_t>(static_cast<unsigned char>(data_[i]))
                        << (24 - 8 * (i % 4));
        require(stream_->calcOTFTableChecksum() == expected, "checksum differs");
    }

    void content(Operations&) { checkContent(); }

    void walk(Operations& in) {
        for (std::size_t blocks = in.next() % 4; blocks > 0; --blocks) {
            const char* bytes = nullptr;
            const std::size_t count = stream_->getBuffer(bytes);
            const std::size_t expected =
                std::min<std::size_t>(grow_ - read_ % grow_, data_.size() - read_);
            require(count == expected, "another number of bytes is handed out");
            require(std::string_view(bytes, count) == std::string_view(data_).substr(read_, count),
                    "other bytes are handed out");
            read_ += count;
        }
    }

    void copyIn(Operations& in) {
        const std::string text = in.nextText(in.nextLength(grow_));
        const std::size_t wanted = in.nextLength(grow_);
        std::istringstream source(text);
        const std::size_t copied = stream_->copyStream(source, wanted);
        require(copied == std::min(wanted, text.size()), "another number of bytes is copied");
        store(text.substr(0, wanted));
    }

    void addSource(Operations& in) {
        const std::string text = in.nextText(in.nextLength(grow_));
        const int kind = in.next() % 4;
        if (kind == 0) {
            stream_->setSource(std::make_unique<BrokenSource>().release(), true);
            return;
        }
        auto source = std::make_unique<std::istringstream>(text);
        if (kind == 1) source->exceptions(std::ios_base::eofbit | std::ios_base::failbit);
        stream_->setSource(source.release(), true);
        data_ += text;
    }

    void copy(Operations&) {
        // Sources stay behind, so they are drained first.
        stream_->length();
        stream_ = std::make_unique<RyMemStream>(*stream_);
    }

    void setGrow(Operations& in) {
        const std::size_t size = 1 + in.next() % 40;
        stream_->length();
        stream_->setGrowBytes(size);
        if (data_.empty()) grow_ = size;
    }

    static constexpr std::size_t MOST_DATA = 20'000;
    static constexpr int COUNT = 21;
    static constexpr Operation OPERATIONS[COUNT] = {
        &MemStreamModel::write,    &MemStreamModel::read,      &MemStreamModel::put,
        &MemStreamModel::get,      &MemStreamModel::stepBack,  &MemStreamModel::seek,
        &MemStreamModel::seek,     &MemStreamModel::search,    &MemStreamModel::skip,
        &MemStreamModel::skipLine, &MemStreamModel::trim,      &MemStreamModel::removeSometimes,
        &MemStreamModel::abandon,  &MemStreamModel::sum,       &MemStreamModel::content,
        &MemStreamModel::walk,     &MemStreamModel::copyIn,    &MemStreamModel::addSource,
        &MemStreamModel::copy,     &MemStreamModel::addSource, &MemStreamModel::setGrow,
    };

    std::uint64_t grow_;
    std::unique_ptr<RyMemStream> stream_;
    std::string data_;
    std::size_t read_ = 0;
    std::size_t write_ = 0;
    int checks_ = 0;
    std::string error_;
};

}  // namespace RynCommon
