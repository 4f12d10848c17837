// zlib's inflate() as a step from one block of bytes to another, of any size.
#pragma once

#include <zlib.h>

namespace RynCommon::streams {

class Inflation {
public:
    /// RFC 1951 data by itself, or RFC 1952 members, whose checksums are not looked at.
    enum class Format : unsigned char { Raw, Gzip };
    enum class Result : unsigned char {
        Running,  ///< the input is used up or the output full
        Ended,    ///< the compressed data is complete
        Broken    ///< it is no such data
    };

    explicit Inflation(Format format);
    ~Inflation() { close(); }
    Inflation(const Inflation&) = delete;
    Inflation& operator=(const Inflation&) = delete;

    /// Begins anew, at the start of such data.
    void restart();
    /// Gives up what is needed to go on, some 10 to 42 KB; restart() takes it again.
    void close();

    /// Takes bytes from `from` and stores bytes at `to`; both move, also when the result is Broken.
    /// `last` tells that no input follows, which spares the window when all output fits; the data
    /// need not end there.
    Result run(const char*& from, const char* fromEnd, char*& to, char* toEnd, bool last);

private:
    int step(const char*& from, const char* fromEnd, char*& to, char* toEnd, int flush);

    void open();

    z_stream stream_{};
    Format format_;
    bool open_ = false;
};

}  // namespace RynCommon::streams
