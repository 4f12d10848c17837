// Copying one member or stream into a file.
#include "Extraction.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "Format.h"
#include "Progress.h"
#include "Report.h"

namespace {

bool copyAll(std::istream& in, std::ostream& out, std::uint64_t& copied) {
    std::array<char, 1 << 16> bytes;
    Progress progress("copying", "bytes");
    while (in.read(bytes.data(), bytes.size()), in.gcount() > 0) {
        if (!out.write(bytes.data(), in.gcount())) return false;
        copied += static_cast<std::uint64_t>(in.gcount());
        progress.add(static_cast<std::uint64_t>(in.gcount()));
    }
    return static_cast<bool>(out.flush());
}

}  // namespace

bool copyOut(std::istream& in, const std::string& target) {
    errno = 0;
    std::ofstream out(target, std::ios::binary | std::ios::trunc);
    if (!out) return printError("cannot write " + target + ": " + std::strerror(errno));
    std::uint64_t copied = 0;
    if (!copyAll(in, out, copied))
        return printError("cannot write " + target + ": " + std::strerror(errno));
    print("copied", formatCount(copied) + " bytes to " + target);
    return in.bad() ? printError("the data is damaged") : true;
}
