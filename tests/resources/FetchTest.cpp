// Opening URIs: files, data, the resolver hook, output, modules.
#include <RynCommon/RyUri.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <tuple>

#include "tests/resources/Fetching.h"

namespace RynCommon {
namespace {

class FetchTest : public testing::Test {
protected:
    void write(const std::string& name) const { folder_.write(name, name); }
    RyUri uri(const std::string& rest) const { return RyUri(u("file://" + directory_ + rest)); }

    ScratchFolder folder_;
    const std::string& directory_ = folder_.path();
};

TEST_F(FetchTest, OpensFilesUnderTheirEscapedNames) {
    for (const char* const name : {"a b", "\xC3\xA9\xE6\x97\xA5", "50%", "c#d"}) write(name);
    const std::pair<const char*, const char*> rows[] = {
        {"/a%20b", "a b"},      {"/%C3%A9%e6%97%A5", "\xC3\xA9\xE6\x97\xA5"},
        {"/50%25", "50%"},      {"/50%", "50%"},
        {"/c#d", "c#d"},        {"/a%20b%00", "(none)"},
        {"/missing", "(none)"}, {"/", "(none)"},
    };
    for (const auto& [text, content] : rows) {
        const Fetched fetched = fetch(uri(text));
        EXPECT_EQ(fetched.content, content) << text;
        EXPECT_EQ(fetched.error.empty(), std::string(content) != "(none)") << text;
        EXPECT_EQ(uri(text).isFileExists(), fetched.error.empty()) << text;
    }
    EXPECT_EQ(fetch(RyUri(u("file://localhost" + directory_ + "/a%20b"))).content, "a b");
    EXPECT_EQ(fetch(RyUri(uri("/x/y"), u("../a b"))).content, "a b");
}

TEST_F(FetchTest, SaysWhyNothingOpens) {
    const std::pair<std::string, std::string> rows[] = {
        {"file://" + directory_, "Cannot open file: " + directory_ + ": Is a directory"},
        {"/no/such", "Cannot open file: /no/such: No such file or directory"},
        {"C:\\a b.xml", "Cannot open file: C:\\a b.xml: not a path of this system"},
        {"", "Cannot open file: : No such file or directory"},
        {"GOPHER://h/a", "Cannot open URI of scheme: gopher"},
        {"data:", "Malformed data URI: no comma"},
        {"data:text/xml", "Malformed data URI: no comma"},
        {"data:;base64;TWFu", "Malformed data URI: no comma"},
    };
    for (const auto& [text, error] : rows)
        EXPECT_EQ(fetch(text), (Fetched{.error = error})) << text;
}

TEST_F(FetchTest, DecodesDataBehindTheComma) {
    const std::tuple<const char*, std::string, const char*> rows[] = {
        {"data:,a%20b", "a b", ""},
        {"data:,a%00b", std::string("a\0b", 3), ""},
        {"data:,a b", "a b", ""},
        {"data:,\xC3\xA9%C3%A9%FF", "\xC3\xA9\xC3\xA9\xFF", ""},
        {"data:,50%,%4,%zz,%%41", "50%,%4,%zz,%A", ""},
        {"data:,a?b#c\\d", "a?b#c\\d", ""},
        {"DATA:a/b;base64,TWFu", "Man", "a/b"},
        {"data:;base64,TQ==", "M", ""},
        {"data:;base64,T W\r\nF\tu", "Man", ""},
        {"data:;base64,%54%57%46u", "Man", ""},
        {"data:;base64,%2B/%2f+", "\xFB\xFF\xFE", ""},
        {"data:;base64;x=y,TWFu", "Man", ""},
        {"data:;base64=no,TWFu", "TWFu", ""},
    };
    for (const auto& [text, content, contentType] : rows)
        EXPECT_EQ(fetch(text), (Fetched{content, "", contentType})) << text;
}

TEST_F(FetchTest, TheResolverComesFirst) {
    write("a");
    FixedResources resolver;
    resolver.resources = {{"http://h/a%20b", "supplied"}, {s(uri("/a")), "supplied"}};
    EXPECT_EQ(RyUri::getUriReferenceResolver(), &resolver);
    EXPECT_EQ(fetch("http://h/a b"), (Fetched{"supplied", "", "text/x-test"}));
    EXPECT_EQ(fetch(uri("/a")).content, "supplied");
    EXPECT_EQ(resolver.asked, "http://h/a%20b\n" + s(uri("/a")) + "\n");
    resolver.resources.clear();
    EXPECT_EQ(fetch(uri("/a")).content, "a");
    EXPECT_EQ(uri("/a").getStreamFromResolver(), nullptr);
    EXPECT_EQ(RyUri::setUriReferenceResolver(nullptr), &resolver);
}

TEST_F(FetchTest, OutputGoesBesideTheUri) {
    RyUri base = uri("/doc.xml");
    std::ostream* const out = base.createOStream(u("out a.txt"));
    ASSERT_NE(out, nullptr);
    *out << "written";
    base.releaseOStream(out);
    EXPECT_EQ(fetch(uri("/out%20a.txt")).content, "written");
    for (const char* const refused : {"no/dir/out", "http://h/out", "C:\\out"})
        EXPECT_EQ(base.createOStream(u(refused)), nullptr) << refused;
    base.releaseOStream(nullptr);
}

TEST_F(FetchTest, SameFile) {
    write("a");
    write("b");
    EXPECT_TRUE(uri("/a").isSameFile(uri("/%61")));
    EXPECT_FALSE(uri("/a").isSameFile(uri("/b")));
    EXPECT_TRUE(uri("/missing").isSameFile(uri("/missing")));
    EXPECT_FALSE(RyUri(u("http://h/a")).isSameFile(uri("/a")));
}

TEST_F(FetchTest, ExistingPaths) {
    write("\xC3\xA9");
    const std::string path = directory_ + "/\xC3\xA9";
    const std::wstring wide = std::wstring(directory_.begin(), directory_.end()) + L"/\u00E9";
    EXPECT_TRUE(RyUri::isFileExists(path.c_str()));
    EXPECT_TRUE(RyUri::isFileExists(wide.c_str()));
    EXPECT_FALSE(RyUri::isFileExists((path + "%").c_str()));
    EXPECT_FALSE(RyUri::isFileExists(directory_.c_str()));
    EXPECT_FALSE(RyUri::isFileExists(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(RyUri(u("http://h/a")).isFileExists());
}

TEST(ModuleUriTest, LiesBesideTheModule) {
    const RyUri plain = RyUri::getModuleUri(u("plug in"));
    const RyUri program = RyUri::getModuleUri(
        u(std::filesystem::read_symlink("/proc/self/exe").filename().string() + "."));
    EXPECT_EQ(s(plain.getFileName()), "plug%20in.so");
    EXPECT_EQ(plain.getBaseString(), program.getBaseString());
    EXPECT_EQ(s(RyUri::getModuleUri(u("100%.dat")).getFileName()), "100%25.dat");
    void* const library = RyUri::loadLibrary(u("libz.so.1"));
    EXPECT_NE(RyUri::getProcAddress(library, "zlibVersion"), nullptr);
    EXPECT_TRUE(RyUri::freeLibrary(library));
    EXPECT_EQ(RyUri::loadLibrary(plain.getLocalPath()), nullptr);
}

}  // namespace
}  // namespace RynCommon
