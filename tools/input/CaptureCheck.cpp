#include "tools/input/CaptureCheck.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <span>
#include <system_error>

namespace TalIec61850Tools {

namespace {

using Magic = std::array<std::uint8_t, 4>;

constexpr std::array<Magic, 4> kClassicMagics = {{
    {0xD4, 0xC3, 0xB2, 0xA1},
    {0xA1, 0xB2, 0xC3, 0xD4},
    {0x4D, 0x3C, 0xB2, 0xA1},
    {0xA1, 0xB2, 0x3C, 0x4D},
}};
constexpr Magic kNextGenerationMagic = {0x0A, 0x0D, 0x0D, 0x0A};
constexpr std::size_t kByteOrderOffset = 8;

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    ~Descriptor() {
        if (number_ >= 0) {
            ::close(number_);
        }
    }
    [[nodiscard]] int number() const { return number_; }

private:
    int number_;
};

std::string describe(int error) { return std::generic_category().message(error); }

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

Magic magicAt(std::span<std::uint8_t const> octets) {
    Magic magic{};
    std::copy_n(octets.begin(), magic.size(), magic.begin());
    return magic;
}

bool isClassic(Magic const& magic) {
    return std::find(kClassicMagics.begin(), kClassicMagics.end(), magic) != kClassicMagics.end();
}

std::optional<std::string> findFault(int file) {
    std::array<std::uint8_t, kByteOrderOffset + sizeof(Magic)> octets{};
    if (!readStart(file, octets)) {
        return describe(errno);
    }
    std::span<std::uint8_t const> const start(octets);
    if (isClassic(magicAt(start))) {
        return std::nullopt;
    }
    if (magicAt(start) != kNextGenerationMagic) {
        return "not a classic capture file";
    }
    // The library looks for a classic magic there too.
    if (isClassic(magicAt(start.subspan(kByteOrderOffset)))) {
        return std::nullopt;
    }
    return "next-generation capture: convert it first, for example with editcap -F pcap";
}

}  // namespace

CaptureCheck checkCapture(std::string const& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return {.fault = describe(errno), .identity = {}};
    }
    if (S_ISDIR(status.st_mode)) {
        return {.fault = describe(EISDIR), .identity = {}};
    }
    if (!S_ISREG(status.st_mode) && !S_ISBLK(status.st_mode)) {
        return {.fault = "not a regular file", .identity = {}};
    }
    // Should a pipe have taken its place meanwhile, this does not wait for a writer either.
    Descriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (file.number() < 0) {
        return {.fault = describe(errno), .identity = {}};
    }
    return {.fault = findFault(file.number()),
            .identity = {.device = status.st_dev, .inode = status.st_ino}};
}

}  // namespace TalIec61850Tools
