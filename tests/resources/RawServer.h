// A server on 127.0.0.1 for what no proper one does, at a port that the system chooses.
#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace RynCommon {

/// One connection to a RawServer.
class Connection {
public:
    explicit Connection(int socket) : socket_(socket) {}
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    /// Reads a request's head; what came of it when the peer closes.
    std::string readRequest();
    /// False when the peer is gone.
    bool send(const std::string& bytes);
    /// Ends with a reset instead of an orderly close.
    void reset();
    /// Tells the peer that no more comes, and gives the socket up to the caller; -1 when it is
    /// closed already.
    int end();

private:
    int socket_;
};

/// Hands each connection, one after the other, to a function.
class RawServer {
public:
    explicit RawServer(std::function<void(Connection&)> handle);
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;
    /// Waits for the connection that is being handled.
    ~RawServer();

    int port() const { return port_; }
    std::string url(const std::string& path = "/") const;

private:
    void run();

    std::function<void(Connection&)> handle_;
    int port_ = 0;
    int listener_;
    std::vector<int> ended_;  // sockets of connections that were handled; closed with the server
    std::thread thread_;
};

}  // namespace RynCommon
