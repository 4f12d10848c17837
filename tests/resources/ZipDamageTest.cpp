// Archives that are cut or wrong. What only has to end stands in the hostile proof and in the fuzz
// target.
#include <RynCommon/RyZipFile.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "ZipReading.h"
#include "tests/streams/ByteSources.h"
#include "tests/streams/DeflateData.h"

namespace RynCommon {
namespace {

std::string makeSmallZip() {
    return makeZip({{"a.xml", makeText(200)}, {"b", "stored", 0}, {"c", makeText(90), 8}});
}

TEST(ZipDamageTest, ACutArchiveHoldsWhatIsWholeOfIt) {
    const std::string archive = makeSmallZip();
    const Members whole = readMembers(openZip(archive));
    for (std::size_t size = 0; size < archive.size(); ++size) {
        const std::string cut = archive.substr(0, size);
        const Members members = readMembers(openZip(cut));
        ASSERT_LE(members.size(), whole.size()) << size;
        for (std::size_t i = 0; i + 1 < members.size(); ++i)
            ASSERT_EQ(members[i], whole[i]) << size;
        if (members.empty()) continue;
        const std::string& last = members.back();
        const std::string& expected = whole[members.size() - 1];
        // The name may be cut as well; it is followed by "=" and the data.
        ASSERT_TRUE(expected.starts_with(last) ||
                    expected.starts_with(last.substr(0, last.size() - 1)))
            << size << ": " << last;
    }
}

TEST(ZipDamageTest, ATruncatedHeaderHasZeroFields) {
    const std::string archive = makeZip({{"name", "data", 0}});
    for (std::size_t size = 4; size < 30; ++size) {
        const RyZipFile zip = openZip(archive.substr(0, size));
        ASSERT_EQ(zip.getFileEntryCount(), 1u) << size;
        const RyZipFileEntry& entry = *zip.getFileEntry(0);
        EXPECT_EQ(entry.getCompressedSize(), size < 22 ? 0u : 4u) << size;
        EXPECT_EQ(entry.getUncompressedSize(), size < 26 ? 0u : 4u) << size;
        EXPECT_TRUE(entry.getFileName().isEmpty()) << size;
    }
}

/// Sizes beyond the stream's end give what is there, and nothing is allocated for the rest.
TEST(ZipDamageTest, SizesBeyondTheEndGiveWhatIsThere) {
    const std::string archive =
        makeZip({{.name = "a", .data = "data", .method = 0, .compressedSize = 0xFFFFFFFF}});
    const RyZipFile zip = openZip(archive);
    EXPECT_EQ(zip.getFileEntry(0)->getCompressedSize(), 0xFFFFFFFFu);
    EXPECT_EQ(readMembers(zip), Members{"a=" + archive.substr(31)});

    std::string large = makeZip({{.name = "a", .data = "data", .method = 0, .zip64 = true}});
    const std::size_t field = large.rfind(std::string("\x01\0\x18\0\x04", 5));
    ASSERT_NE(field, std::string::npos);
    large.replace(field + 12, 8, std::string(7, '\xFF') + "\x7F");
    const RyZipFile zip64 = openZip(large, true);
    EXPECT_EQ(zip64.getFileEntry(0)->getCompressedSize(), 0x7FFFFFFFFFFFFFFFu);
    EXPECT_EQ(readMembers(zip64).at(0).substr(0, 6), "a=data");
}

TEST(ZipDamageTest, StreamsThatCannotSeekHaveNoMembers) {
    ChunkSource chunks(makeSmallZip(), 100);
    std::istream in(&chunks);
    EXPECT_FALSE(RyZipFile::isZipFile(&in));
    EXPECT_EQ(RyZipFile(&in, false).getFileEntryCount(), 0u);
    EXPECT_EQ(in.get(), 'P') << "bytes were taken that cannot be put back";
    std::istream none(nullptr);
    EXPECT_EQ(RyZipFile(&none, false).getFileEntryCount(), 0u);
    EXPECT_FALSE(RyZipFile::isZipFile(&none));
}

TEST(ZipDamageTest, ReadErrorsEndTheData) {
    const std::string archive = makeSmallZip();
    for (const bool fromDirectory : {false, true}) {
        for (std::size_t good = 0; good < archive.size() + 10; good += 7) {
            WatchedBuf buffer(archive, good);
            std::istream in(&buffer);
            in.exceptions(std::ios::badbit | std::ios::failbit);
            RyZipFile zip;
            zip.setUseCentralDirectory(fromDirectory);
            EXPECT_NO_THROW(zip.open(&in, false));
            EXPECT_NO_THROW(readMembers(zip));
        }
    }
}

}  // namespace
}  // namespace RynCommon
