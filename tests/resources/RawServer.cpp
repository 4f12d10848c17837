// Servers of any manners for the tests.
#include "tests/resources/RawServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace RynCommon {

namespace {

int listenAnywhere(int& port) {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener, generic, size) != 0 || listen(listener, 8) != 0 ||
        getsockname(listener, generic, &size) != 0) {
        throw std::runtime_error("no port to listen at");
    }
    port = ntohs(address.sin_port);
    return listener;
}

}  // namespace

Connection::~Connection() {
    if (socket_ >= 0) close(socket_);
}

int Connection::end() {
    if (socket_ >= 0) shutdown(socket_, SHUT_WR);
    return std::exchange(socket_, -1);
}

std::string Connection::readRequest() {
    std::string head;
    char c = 0;
    while (!head.ends_with("\r\n\r\n") && recv(socket_, &c, 1, 0) == 1) head += c;
    return head;
}

bool Connection::send(const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count =
            ::send(socket_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return false;
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

void Connection::reset() {
    const linger none{1, 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, &none, sizeof none);
    close(socket_);
    socket_ = -1;
}

RawServer::RawServer(std::function<void(Connection&)> handle)
    : handle_(std::move(handle)), listener_(listenAnywhere(port_)) {
    thread_ = std::thread([this] { run(); });
}

RawServer::~RawServer() {
    shutdown(listener_, SHUT_RDWR);
    thread_.join();
    close(listener_);
    for (const int socket : ended_) close(socket);
}

std::string RawServer::url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
}

void RawServer::run() {
    for (;;) {
        const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) return;
        Connection connection(socket);
        handle_(connection);
        // An orderly end even where the request was not read: closing now would reset. Nor is the
        // client waited for, which may hold this connection while it asks for the next.
        if (const int ended = connection.end(); ended >= 0) ended_.push_back(ended);
    }
}

}  // namespace RynCommon
