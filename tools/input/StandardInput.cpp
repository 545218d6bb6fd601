#include "tools/input/StandardInput.hpp"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <system_error>
#include <vector>

namespace TalIec61850Tools {

using TalIec61850Analysis::Descriptor;

namespace {

constexpr std::size_t kBlockSize = std::size_t{1} << 18U;

[[noreturn]] void fail() { throw std::system_error(errno, std::generic_category()); }

bool isFileFromItsStart() {
    struct stat status {};
    if (::fstat(STDIN_FILENO, &status) != 0) {
        fail();
    }
    return S_ISREG(status.st_mode) && ::lseek(STDIN_FILENO, 0, SEEK_CUR) == 0;
}

/// A file without a name: whatever becomes of the program, nothing is left of it.
Descriptor makeNamelessFile() {
    std::string path = std::filesystem::temp_directory_path() / "tal-iec61850-XXXXXX";
    Descriptor file(::mkstemp(path.data()));
    if (!file || ::unlink(path.c_str()) != 0) {
        fail();
    }
    return file;
}

void writeAll(int file, std::span<char const> octets) {
    while (!octets.empty()) {
        ssize_t const count = ::write(file, octets.data(), octets.size());
        if (count >= 0) {
            octets = octets.subspan(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            fail();
        }
    }
}

void copyStandardInput(int file) {
    std::vector<char> block(kBlockSize);
    for (;;) {
        ssize_t const count = ::read(STDIN_FILENO, block.data(), block.size());
        if (count == 0) {
            return;
        }
        if (count > 0) {
            writeAll(file, std::span(block).first(static_cast<std::size_t>(count)));
        } else if (errno != EINTR) {
            fail();
        }
    }
}

}  // namespace

StandardInput::StandardInput() {
    if (!isFileFromItsStart()) {
        copy_ = makeNamelessFile();
        copyStandardInput(copy_.number());
    }
    path_ = fmt::format("/proc/self/fd/{}", copy_ ? copy_.number() : STDIN_FILENO);
}

}  // namespace TalIec61850Tools
