// One request to a server: the only room that knows the transfer library, libcurl.
//
// A transfer moves only while somebody waits in open() or read() or looks with available(); no
// thread works behind it. What arrives goes into a buffer of fixed size. When that is full the
// transfer pauses, the socket's own buffer fills up and the server has to wait, so the memory taken
// does not depend on the body's length or the reader's pace. The library's callbacks are C code
// calling back: they neither throw nor allocate.
//
// The request is HTTP/1.1: a single request per connection gains nothing from HTTP/2, whose window
// lets a server send 32 MB that nobody has asked for yet.
//
// Time is limited where nothing happens: connecting (with name look-up and TLS) has 5000 ms, and
// after that 30 s may pass without a byte. The library's own low-speed limit works on rounded
// averages that also count the pauses of the reader, so the clock is kept here and runs only while
// somebody waits.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace RynCommon::uri {

class HttpTransfer {
public:
    enum class Failure {
        NONE,
        NO_ACCESS,   ///< the library does not start
        NOT_OPENED,  ///< no connection, a refused redirect, an answer that ends in its head
        NO_STATUS    ///< something answered, but not with a status
    };

    HttpTransfer();
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;
    /// Closes the connection.
    ~HttpTransfer();

    /// Sends a GET request, follows redirects, and waits for the head of the final answer and, with
    /// a status of class 2xx, the first byte of its body or its end. To be called once. `url` is
    /// ASCII without fragment.
    Failure open(const std::string& url);

    /// The library's result code for the failure; 0 when there was none.
    int getResult() const { return result_; }
    /// The status of the final answer; 0 when there was none.
    int getStatus() const { return status_; }
    /// The Content-Type header of the final answer as sent; empty when there was none.
    const std::string& getContentType() const { return contentType_; }

    /// Number of bytes that can be read without waiting.
    std::size_t available();
    /// Whether nothing comes any more and everything was read.
    bool isAtEnd() const;
    /// Copies what is there, at most `count` bytes, waiting for the first one. 0 at the body's end,
    /// which also is where it breaks off.
    std::size_t read(char* target, std::size_t count);

private:
    struct Request;

    void close(int result);
    Failure findFailure() const;

    std::unique_ptr<Request> request_;
    int result_ = 0;
    int status_ = 0;
    std::string contentType_;
};

}  // namespace RynCommon::uri
