#include <sys/stat.h>

#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/file/RecogniseStart.hpp>
#include <cerrno>

namespace TalIec61850Analysis {

namespace {

CaptureCheck refuse(CaptureFault fault) {
    CaptureCheck check;
    check.fault = fault;
    return check;
}

CaptureCheck refuseFor(std::error_code error) {
    CaptureCheck check = refuse(CaptureFault::refusedBySystem);
    check.error = error;
    return check;
}

CaptureCheck checkContent(std::string const& path) {
    try {
        auto const kind = detail::recogniseStart(detail::openToRead(path));
        if (!kind.isCapture()) {
            return refuse(CaptureFault::notCapture);
        }
        CaptureCheck check;
        check.format =
            kind.isNextGeneration ? CaptureFormat::nextGeneration : CaptureFormat::classic;
        return check;
    } catch (std::system_error const& error) {
        return refuseFor(error.code());
    }
}

}  // namespace

CaptureCheck checkCapture(std::string const& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return refuseFor({errno, std::generic_category()});
    }
    if (S_ISDIR(status.st_mode)) {
        return refuseFor({EISDIR, std::generic_category()});
    }
    if (!S_ISREG(status.st_mode) && !S_ISBLK(status.st_mode)) {
        return refuse(CaptureFault::notRegularFile);
    }
    CaptureCheck check = checkContent(path);
    check.identity = {.device = status.st_dev, .inode = status.st_ino};
    check.size = static_cast<std::uint64_t>(status.st_size);
    return check;
}

}  // namespace TalIec61850Analysis
