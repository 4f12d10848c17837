// A document of any size that exists only while it is read.
#pragma once

#include <cstdint>
#include <istream>
#include <streambuf>
#include <string>
#include <vector>

/// Generates XML in blocks of 64 KiB: a root with sections of some 1.5 KB, each with a number, a
/// title, paragraphs with inline elements, and a table row. Nothing past the block in hand exists,
/// so memory seen to grow is the reader's.
class GeneratedBuffer : public std::streambuf {
public:
    explicit GeneratedBuffer(std::uint64_t size);

    /// Bytes handed out so far, the unread rest of the block among them.
    std::uint64_t getProduced() const { return produced_; }

protected:
    int_type underflow() override;

private:
    void appendSection();

    std::uint64_t size_;
    std::uint64_t produced_ = 0;
    std::uint64_t sections_ = 0;
    bool ended_ = false;
    std::string section_;
    std::size_t numberAt_;
    std::string block_;
};

class GeneratedDocument : private GeneratedBuffer, public std::istream {
public:
    /// Of `size` bytes, to the end of the section in which they are reached.
    explicit GeneratedDocument(std::uint64_t size)
        : GeneratedBuffer(size), std::istream(static_cast<GeneratedBuffer*>(this)) {}

    using GeneratedBuffer::getProduced;
};
