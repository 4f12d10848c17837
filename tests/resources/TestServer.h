// A proper server on 127.0.0.1, in the test's own process, at a port that the system chooses.
#pragma once

#include <httplib.h>

#include <string>
#include <thread>

namespace RynCommon {

/// Runs a server of the HTTP library, plain or with TLS.
class TestServer {
public:
    /// `server` has its routes already.
    explicit TestServer(httplib::Server& server);
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;
    ~TestServer();

    int port() const { return port_; }
    /// "127.0.0.1:port" and `path`.
    std::string at(const std::string& path) const;

private:
    httplib::Server& server_;
    int port_;
    std::thread thread_;
};

}  // namespace RynCommon
