// Proper servers for the tests.
#include "tests/resources/TestServer.h"

namespace RynCommon {

TestServer::TestServer(httplib::Server& server)
    : server_(server), port_(server.bind_to_any_port("127.0.0.1")) {
    server_.set_keep_alive_timeout(1);
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) std::this_thread::yield();
}

TestServer::~TestServer() {
    server_.stop();
    thread_.join();
}

std::string TestServer::at(const std::string& path) const {
    return "127.0.0.1:" + std::to_string(port_) + path;
}

}  // namespace RynCommon
