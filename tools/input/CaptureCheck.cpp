#include "tools/input/CaptureCheck.hpp"

#include <sys/stat.h>

#include <array>
#include <cerrno>
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

CaptureCheck checkContent(std::string const& path) {
    Descriptor const file = openToRead(path);
    if (!file) {
        return refuseFor(errno);
    }
    std::array<std::uint8_t, kCaptureStartSize> start{};
    try {
        static_cast<void>(readAt(file, 0, start));  // what is not there stays zero
    } catch (std::system_error const& error) {
        return refuse(error.code().message());
    }
    return checkStart(start);
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
    CaptureCheck check = checkContent(path);
    check.identity = {.device = status.st_dev, .inode = status.st_ino};
    check.size = static_cast<std::uint64_t>(status.st_size);
    return check;
}

}  // namespace TalIec61850Tools
