#include "bench/lazy/GeneratedDocument.h"

namespace {

constexpr std::size_t BLOCK_SIZE = 64 * 1024;
constexpr std::size_t NUMBER_WIDTH = 12;

constexpr char HEAD[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<book xmlns=\"urn:example:book\" xmlns:t=\"urn:example:table\">\n";
constexpr char TAIL[] = "</book>\n";

std::string makeSection() {
    std::string section =
        "<section id=\"s000000000000\" level=\"2\"><title>Of documents and their parts</title>\n";
    for (int i = 0; i < 5; ++i) {
        section +=
            "<para>A formatter begins its work before the last page has been read; what it has "
            "<emphasis role=\"strong\">finished</emphasis> it lets go of, so that the memory in "
            "use "
            "follows the page in hand &amp; not the length of the book.</para>\n";
    }
    section +=
        "<t:row><t:cell align=\"right\">42</t:cell><t:cell>m\xC3\xBCnd\xE3\x81\x82</t:cell></t:row>"
        "</section>\n";
    return section;
}

}  // namespace

GeneratedBuffer::GeneratedBuffer(std::uint64_t size)
    : size_(size), section_(makeSection()), numberAt_(section_.find("000000000000")) {
    block_.reserve(BLOCK_SIZE + 2 * section_.size());
}

GeneratedBuffer::int_type GeneratedBuffer::underflow() {
    if (ended_) return traits_type::eof();
    block_.clear();
    if (produced_ == 0) block_ = HEAD;
    while (block_.size() < BLOCK_SIZE && produced_ + block_.size() < size_) appendSection();
    if (produced_ + block_.size() >= size_) {
        block_ += TAIL;
        ended_ = true;
    }
    produced_ += block_.size();
    setg(block_.data(), block_.data(), block_.data() + block_.size());
    return traits_type::to_int_type(*gptr());
}

void GeneratedBuffer::appendSection() {
    std::uint64_t number = ++sections_;
    for (std::size_t i = NUMBER_WIDTH; i-- > 0; number /= 10)
        section_[numberAt_ + i] = static_cast<char>('0' + number % 10);
    block_ += section_;
}
