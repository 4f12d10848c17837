// Fuzz target of the zip reader. An even first byte: the rest is an archive, which has to end and
// may not unpack beyond its own size; checked reading gives the same bytes as unchecked reading. An
// odd one: the rest tells a writer what archive to make, and both ways to find the members have to
// give what was put in.
#include <RynCommon/RyZipFile.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "tests/resources/ZipWriter.h"

using namespace RynCommon;

namespace {

/// Bombs are not unpacked beyond this.
constexpr std::size_t LIMIT = 20'000;
/// Members that are read of one archive; all are listed.
constexpr unsigned MOST_READ = 50;

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

std::string read(std::istream& in) {
    std::string bytes(LIMIT, '\0');
    in.read(bytes.data(), LIMIT);
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

RyZipFile open(const std::string& archive, bool fromDirectory, bool verify) {
    RyZipFile zip;
    zip.setUseCentralDirectory(fromDirectory);
    zip.setVerify(verify);
    zip.open(new std::istringstream(archive), true);
    return zip;
}

void checkMember(RyZipFile& zip, RyZipFileEntry& entry, std::size_t archiveSize) {
    require(read(*entry.getCompressedStream(false)).size() <= archiveSize, "too much data");
    require(zip.getFileEntry(entry.getFileName()) != nullptr, "a member is not found");
    zip.setVerify(false);
    const std::string bytes = read(*entry.getUncompressedStream(false));
    zip.setVerify(true);
    require(read(*entry.getUncompressedStream(false)) == bytes, "checking changes the data");
}

void checkForeign(const std::string& archive) {
    for (const bool fromDirectory : {false, true}) {
        RyZipFile zip = open(archive, fromDirectory, false);
        require(zip.getFileEntryCount() <= archive.size() / 30 + 1, "too many members");
        for (unsigned i = 0; i < std::min(zip.getFileEntryCount(), MOST_READ); ++i) {
            checkMember(zip, *zip.getFileEntry(i), archive.size());
        }
    }
}

/// Takes numbers and pieces off the front of the input.
class Input {
public:
    explicit Input(std::string bytes) : bytes_(std::move(bytes)) {}

    bool isEmpty() const { return at_ >= bytes_.size(); }
    unsigned next() { return isEmpty() ? 0 : static_cast<unsigned char>(bytes_[at_++]); }
    std::string take(std::size_t count) {
        const std::string piece = bytes_.substr(std::min(at_, bytes_.size()), count);
        at_ += piece.size();
        return piece;
    }

private:
    std::string bytes_;
    std::size_t at_ = 0;
};

/// Only what both ways read: no data descriptors, no zip64 sizes, and names of ASCII.
std::vector<ZipMember> makeMembers(Input& input) {
    std::vector<ZipMember> members;
    while (!input.isEmpty() && members.size() < 20) {
        const unsigned kind = input.next();
        ZipMember member;
        member.name = input.take(input.next() % 40);
        for (char& c : member.name) c = static_cast<char>(c & 0x7F);
        member.data = input.take(input.next());
        for (unsigned i = kind >> 4; i > 0 && member.data.size() < LIMIT / 4; --i) {
            member.data += member.data;
        }
        member.method = kind & 1 ? 8 : 0;
        member.utf8 = (kind & 2) != 0;
        if (kind & 4) member.localExtra = input.take(input.next() % 20);
        if (kind & 8) member.comment = input.take(input.next() % 20);
        members.push_back(member);
    }
    return members;
}

void checkWritten(Input input) {
    const unsigned kind = input.next();
    ZipShape shape;
    shape.zip64 = (kind & 1) != 0;
    if (kind & 2) shape.comment = std::string(kind, 'c');
    const std::vector<ZipMember> members = makeMembers(input);
    const std::string archive = makeZip(members, shape);
    for (const bool fromDirectory : {false, true}) {
        const RyZipFile zip = open(archive, fromDirectory, true);
        require(zip.getFileEntryCount() == members.size(), "members are missing");
        for (unsigned i = 0; i < members.size(); ++i) {
            RyZipFileEntry& entry = *zip.getFileEntry(i);
            std::istream& in = *entry.getUncompressedStream(false);
            require(read(in) == members[i].data && !in.bad(), "the data is not what was written");
            require(entry.getUncompressedSize() == members[i].data.size(), "wrong size");
            const UnicodeString name = UnicodeString::fromUTF8(members[i].name);
            require(entry.getFileName() == name, "wrong name");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (data[0] % 2 == 0) {
        checkForeign(rest);
    } else {
        checkWritten(Input(rest));
    }
    return 0;
}
