#include "tools/input/CaptureCheck.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <span>
#include <system_error>

#include "tools/input/CaptureVariant.hpp"
#include "tools/input/Descriptor.hpp"

namespace TalIec61850Tools {

namespace {

CaptureCheck refuse(std::string reason) {
    CaptureCheck check;
    check.fault = std::move(reason);
    return check;
}

CaptureCheck refuseFor(int error) { return refuse(std::generic_category().message(error)); }

/// Fills `octets` from the start of the file as far as the file goes; the rest keeps its zeros.
[[nodiscard]] bool readStart(int file, std::span<std::uint8_t> octets) {
    std::size_t size = 0;
    while (size < octets.size()) {
        ssize_t const count =
            ::pread(file, octets.data() + size, octets.size() - size, static_cast<off_t>(size));
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        if (count == 0) {
            return true;
        }
        size += static_cast<std::size_t>(count);
    }
    return true;
}

CaptureCheck checkStart(std::span<std::uint8_t const, kCaptureStartSize> start) {
    CaptureKind const kind = recogniseCapture(start);
    if (kind.variant) {
        return {};
    }
    if (kind.isNextGeneration) {
        return refuse(
            "next-generation capture: convert it first, for example with editcap -F pcap");
    }
    CaptureCheck check = refuse("not a classic capture file");
    check.isSomethingElse = true;
    return check;
}

}  // namespace

CaptureCheck checkCapture(std::string const& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return refuseFor(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return refuseFor(EISDIR);
    }
    if (!S_ISREG(status.st_mode) && !S_ISBLK(status.st_mode)) {
        CaptureCheck check = refuse("not a regular file");
        check.isSomethingElse = true;
        return check;
    }
    Descriptor const file = openToRead(path);
    std::array<std::uint8_t, kCaptureStartSize> start{};
    if (!file || !readStart(file.number(), start)) {
        return refuseFor(errno);
    }
    CaptureCheck check = checkStart(start);
    check.identity = {.device = status.st_dev, .inode = status.st_ino};
    check.size = static_cast<std::uint64_t>(status.st_size);
    return check;
}

}  // namespace TalIec61850Tools
