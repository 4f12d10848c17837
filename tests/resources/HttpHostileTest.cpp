// Opening http: URIs on servers that are slow, break off or mean harm.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>

#include <RynCommon/RyUriStream.h>

#include "tests/resources/Fetching.h"
#include "tests/resources/RawServer.h"

namespace RynCommon {
namespace {

class HttpHostileTest : public testing::Test {
    ScopedVariable noProxy_{"http_proxy"};
    ScopedVariable noProxyForAll_{"all_proxy"};
};

TEST_F(HttpHostileTest, BrokenAnswers) {
    const struct {
        const char* what;
        std::string answer;
        bool resets;
        std::string content, error;
    } rows[] = {
        {"short body", "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n0123456789", false,
         "0123456789", ""},
        {"short chunk", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n20\r\nabc", false,
         "abc", ""},
        {"no last chunk", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n",
         false, "abc", ""},
        {"bad chunk size",
         "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\nzz\r\n", false, "abc",
         ""},
        {"endless chunk",
         "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nFFFFFFFFFFFFFFFF\r\nabc", false, "",
         ""},
        {"no body", "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n", false, "", ""},
        {"empty body", "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n", false, "", ""},
        {"body until close", "HTTP/1.0 200 OK\r\n\r\nabc", false, "abc", ""},
        {"more than announced", "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nabc", false, "ab", ""},
        {"bare line feeds", "HTTP/1.1 200 OK\nContent-Length: 3\n\nabc", false, "abc", ""},
        {"class 2xx", "HTTP/1.1 299 Odd\r\nContent-Length: 3\r\n\r\nabc", false, "abc", ""},
        {"interim answers",
         "HTTP/1.1 102 Wait\r\nContent-Type: a/b\r\n\r\nHTTP/1.1 103 Wait\r\n\r\n"
         "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc",
         false, "abc", ""},
        {"redirect to nowhere", "HTTP/1.1 302 Found\r\nContent-Length: 3\r\n\r\nabc", false,
         "(none)", "HTTP status is 302"},
        {"silence", "", false, "(none)", "Cannot get HTTP status: 0034"},
        {"reset", "", true, "(none)", "Cannot get HTTP status: 0038"},
        {"no status line", "<html>old times</html>", false, "(none)",
         "Cannot get HTTP status: 0001"},
        {"another protocol", "SSH-2.0-x\r\n\r\n", false, "(none)", "Cannot get HTTP status: 0001"},
        {"head breaks off", "HTTP/1.1 200 OK\r\nContent-Type: text/x", false, "(none)",
         "Cannot open URL: 0012"},
    };
    for (const auto& row : rows) {
        RawServer server([&](Connection& connection) {
            connection.readRequest();
            connection.send(row.answer);
            if (row.resets) connection.reset();
        });
        const Fetched fetched = fetch(server.url());
        EXPECT_EQ(fetched.content, row.content) << row.what;
        EXPECT_EQ(fetched.error, row.error) << row.what;
        EXPECT_EQ(fetched.contentType, "") << row.what;
    }
}

TEST_F(HttpHostileTest, TheTypeIsThatOfTheFinalAnswer) {
    const struct {
        const char *header, *contentType;
    } rows[] = {
        {"", ""},
        {"Content-Type: text/xml ; charset=utf-8\r\n", "text/xml"},
        {"content-type:\ta/b;x\r\n", "a/b"},
        {"Content-Type: ;charset=utf-8\r\n", ""},
        {"Content-Type: \xE9/b\r\n", "\xC3\xA9/b"},
    };
    for (const auto& row : rows) {
        RawServer server([&](Connection& connection) {
            const bool isFirst = connection.readRequest().starts_with("GET / ");
            connection.send(isFirst ? "HTTP/1.1 301 Moved\r\nLocation: /next\r\n"
                                      "Content-Type: text/html\r\nContent-Length: 0\r\n"
                                      "Connection: close\r\n\r\n"
                                    : "HTTP/1.1 200 OK\r\n" + std::string(row.header) + "\r\nx");
        });
        const Fetched fetched = fetch(server.url());
        EXPECT_EQ(fetched.content, "x") << row.header;
        EXPECT_EQ(fetched.contentType, row.contentType) << row.header;
    }
}

TEST_F(HttpHostileTest, FloodsAreCutOff) {
    const std::string line = "X-Filler: " + std::string(1000, 'x') + "\r\n";
    const struct {
        const char* what;
        std::string start, again;
        const char* error;
    } rows[] = {
        {"headers", "HTTP/1.1 200 OK\r\n", line, "Cannot open URL: 0017"},
        {"one header", "HTTP/1.1 200 OK\r\nX: ", line.substr(0, 1000), "Cannot open URL: "},
        {"interim answers", "", "HTTP/1.1 100 Continue\r\n\r\n", "Cannot open URL: 0017"},
        {"body of a redirect",
         "HTTP/1.1 302 Found\r\nLocation: /\r\nContent-Length: 99999999999\r\n\r\n", line,
         "Cannot open URL: 002A"},
        {"body of an error", "HTTP/1.1 500 Oops\r\n\r\n", line, "HTTP status is 500"},
    };
    for (const auto& row : rows) {
        RawServer server([&](Connection& connection) {
            connection.readRequest();
            if (!connection.send(row.start)) return;
            while (connection.send(row.again)) {
            }
        });
        const Fetched fetched = fetch(server.url());
        EXPECT_EQ(fetched.content, "(none)") << row.what;
        EXPECT_TRUE(fetched.error.starts_with(row.error)) << row.what << ": " << fetched.error;
    }
}

TEST_F(HttpHostileTest, AnEndlessBodyWaitsForItsReaderAndEndsWithIt) {
    std::atomic<std::size_t> sent = 0;
    const std::string block(64 * 1024, 'x');
    RawServer server([&](Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\n\r\n");
        while (connection.send(block)) sent += block.size();
    });
    {
        RyUriStream stream{RyUri(u(server.url()))};
        ASSERT_TRUE(stream.is_open());
        std::string start(1'000'000, '\0');
        ASSERT_TRUE(stream.read(start.data(), 1'000'000));
        // Looking at what is there lets the transfer go on; it must stop at the buffer's end.
        for (int i = 0; i < 2000; ++i) {
            EXPECT_LE(stream.rdbuf()->in_avail(), 128 * 1024);
            std::this_thread::yield();
        }
        // What was read, and the buffers of two sockets.
        EXPECT_LT(sent, 40'000'000u);
    }
}  // The server's thread ends only if its connection is closed.

/// Sends the head with the first byte, and the rest when told to.
TEST_F(HttpHostileTest, TheFirstBytesSetTheChunk) {
    const std::string rest = makeNoise(300);
    std::promise<void> opened;
    RawServer server([&, wait = opened.get_future().share()](Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\nContent-Type: text/x-slow\r\n");
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        connection.send("\r\n");
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        connection.send("a");
        wait.wait();
        connection.send(rest);
    });
    RyUriStream stream{RyUri(u(server.url()))};
    ASSERT_TRUE(stream.is_open());
    EXPECT_EQ(s(stream.getContentType()), "text/x-slow");
    std::streambuf& bytes = *stream.rdbuf();
    EXPECT_EQ(bytes.in_avail(), 1);
    EXPECT_EQ(stream.get(), 'a');
    EXPECT_EQ(bytes.in_avail(), 0);
    opened.set_value();
    std::string read;
    while (read.size() < 100) {
        EXPECT_EQ(stream.peek(), static_cast<unsigned char>(rest[read.size()]));
        read += static_cast<char>(stream.get());
        for (int i = 0; i < 16 && i < static_cast<int>(read.size()); ++i) stream.unget();
        ASSERT_TRUE(stream) << "after " << read.size();
        stream.ignore(std::min<std::streamsize>(16, static_cast<std::streamsize>(read.size())));
    }
    EXPECT_EQ(read, rest.substr(0, 100));
    // Blocks may be larger than the chunk, and keep as much for put-back.
    std::string block(5, '\0');
    ASSERT_TRUE(stream.read(block.data(), 5));
    EXPECT_EQ(block, rest.substr(100, 5));
    for (int i = 0; i < 16; ++i) stream.unget();
    ASSERT_TRUE(stream);
    EXPECT_EQ(drain(stream), rest.substr(89));
    stream.clear();
    for (int i = 0; i < 16; ++i) stream.unget();
    EXPECT_EQ(drain(stream), rest.substr(284));
}

TEST_F(HttpHostileTest, ADropBeforeTheEndClosesTheConnection) {
    std::promise<void> closed;
    RawServer server([&](Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nabc");
        connection.waitForClose();
        closed.set_value();
    });
    std::unique_ptr<std::istream> stream(RyUri(u(server.url())).getStream());
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->get(), 'a');
    stream.reset();
    closed.get_future().wait();
}

}  // namespace
}  // namespace RynCommon
