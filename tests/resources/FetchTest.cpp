// Opening URIs: files, the resolver hook, output, modules.
#include <RynCommon/RyUri.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <sstream>
#include <string>

#include "tests/resources/Fetching.h"

namespace RynCommon {
namespace {

class FetchTest : public testing::Test {
protected:
    void write(const std::string& name) const { folder_.write(name, name); }
    RyUri uri(const std::string& rest) const { return RyUri(u("file://" + directory_ + rest)); }

    ScratchFolder folder_;
    const std::string directory_ = folder_.path("").substr(0, folder_.path("").size() - 1);
};

TEST_F(FetchTest, OpensFilesUnderTheirEscapedNames) {
    for (const char* const name : {"a b", "\xC3\xA9\xE6\x97\xA5", "50%", "c#d"}) write(name);
    const std::pair<const char*, const char*> rows[] = {
        {"/a%20b", "a b"},
        {"/a b", "a b"},
        {"/%61 b", "a b"},
        {"/\xC3\xA9\xE6\x97\xA5", "\xC3\xA9\xE6\x97\xA5"},
        {"/%C3%A9%e6%97%A5", "\xC3\xA9\xE6\x97\xA5"},
        {"/50%25", "50%"},
        {"/50%", "50%"},
        {"/c#d", "c#d"},
        {"/a%20b%00", "(none)"},
        {"/missing", "(none)"},
        {"/", "(none)"},
        {"", "(none)"},
    };
    for (const auto& [text, content] : rows) {
        const Fetched fetched = fetch(uri(text));
        EXPECT_EQ(fetched.content, content) << text;
        EXPECT_EQ(fetched.error.empty(), std::string(content) != "(none)") << text;
        EXPECT_EQ(uri(text).isFileExists(), fetched.error.empty()) << text;
    }
    EXPECT_EQ(fetch(RyUri(u("file://localhost" + directory_ + "/a%20b"))).content, "a b");
    EXPECT_EQ(fetch(RyUri(u("file:" + directory_ + "/a%20b"))).content, "a b");
    EXPECT_EQ(fetch(RyUri(RyUri(), u(directory_ + "/a b"))).content, "a b");
    EXPECT_EQ(fetch(RyUri(uri("/x/y"), u("../a b"))).content, "a b");
}

TEST_F(FetchTest, SaysWhyNothingOpens) {
    const std::pair<std::string, std::string> rows[] = {
        {"file://" + directory_, "Cannot open file: " + directory_ + ": Is a directory"},
        {"/no/such", "Cannot open file: /no/such: No such file or directory"},
        {"/dev/zero", "Cannot open file: /dev/zero: Operation not supported"},
        {"C:\\a b.xml", "Cannot open file: C:\\a b.xml: not a path of this system"},
        {"//srv/share/a", "Cannot open file: \\\\srv\\share\\a: not a path of this system"},
        {"", "Cannot open file: : No such file or directory"},
        {"GOPHER://h/a", "Cannot open URI of scheme: gopher"},
    };
    for (const auto& [text, error] : rows) {
        const Fetched fetched = fetch(text);
        EXPECT_EQ(fetched.content, "(none)") << text;
        EXPECT_EQ(fetched.error, error) << text;
        EXPECT_EQ(fetched.contentType, "") << text;
    }
}

class CountingResolver : public RyUriReferenceResolver {
public:
    std::istream* getStream(const UnicodeString& uri, UnicodeString* contentType) override {
        asked += s(uri) + " ";
        if (!serves) return nullptr;
        if (contentType != nullptr) *contentType = u"text/x-test";
        return new std::istringstream("supplied");
    }

    bool serves = true;
    std::string asked;
};

TEST_F(FetchTest, TheResolverComesFirst) {
    write("a");
    CountingResolver resolver;
    const ScopedResolver restored(resolver);
    RyUri::setUriReferenceResolver(nullptr);
    EXPECT_EQ(RyUri::setUriReferenceResolver(&resolver), nullptr);
    EXPECT_EQ(RyUri::getUriReferenceResolver(), &resolver);
    UnicodeString error = u("old");
    UnicodeString contentType;
    const std::unique_ptr<std::istream> in(
        RyUri(u("http://h/a b")).getStream(&error, &contentType));
    ASSERT_NE(in, nullptr);
    EXPECT_EQ(resolver.asked, "http://h/a%20b ");
    EXPECT_EQ(s(contentType), "text/x-test");
    EXPECT_TRUE(error.isEmpty());
    EXPECT_EQ(fetch(uri("/a")).content, "supplied");
    resolver.serves = false;
    EXPECT_EQ(fetch(uri("/a")).content, "a");
    EXPECT_EQ(uri("/a").getStreamFromResolver(), nullptr);
    EXPECT_EQ(RyUri::setUriReferenceResolver(nullptr), &resolver);
    resolver.serves = true;
    EXPECT_EQ(fetch(uri("/a")).content, "a");
}

TEST_F(FetchTest, OutputGoesBesideTheUri) {
    RyUri base = uri("/doc.xml");
    std::ostream* const out = base.createOStream(u("out a.txt"));
    ASSERT_NE(out, nullptr);
    *out << "written";
    base.releaseOStream(out);
    EXPECT_EQ(fetch(uri("/out%20a.txt")).content, "written");
    EXPECT_EQ(base.createOStream(u("no/dir/out")), nullptr);
    EXPECT_EQ(base.createOStream(u("http://h/out")), nullptr);
    EXPECT_EQ(base.createOStream(u("C:\\out")), nullptr);
    EXPECT_EQ(base.createOStream(u(".")), nullptr);
    base.releaseOStream(nullptr);
}

TEST_F(FetchTest, SameFile) {
    write("a");
    write("b");
    std::filesystem::create_hard_link(directory_ + "/a", directory_ + "/c");
    EXPECT_TRUE(uri("/a").isSameFile(uri("/%61")));
    EXPECT_TRUE(uri("/a").isSameFile(uri("/./a")));
    EXPECT_TRUE(uri("/a").isSameFile(uri("/c")));
    EXPECT_FALSE(uri("/a").isSameFile(uri("/b")));
    EXPECT_TRUE(uri("/missing").isSameFile(uri("/missing")));
    EXPECT_TRUE(RyUri(u("http://h/a")).isSameFile(RyUri(u("http://h/a"))));
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
