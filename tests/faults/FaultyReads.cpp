#include "faults/FaultyReads.hpp"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace {

TalTest::ReadFaults active;
std::size_t readCount = 0;
std::size_t seekCount = 0;

long plainSeek(int file, long offset, int whence) {
    return ::syscall(SYS_lseek, file, offset, whence);
}

long faultyRead(int file, void* octets, std::size_t wanted) {
    ++readCount;
    if (readCount == active.failingRead || (active.isInterrupted && readCount % 2 == 1)) {
        errno = active.isInterrupted ? EINTR : EIO;
        return -1;
    }
    if (active.endsAt != TalTest::ReadFaults::never) {
        auto const position = static_cast<std::size_t>(plainSeek(file, 0, SEEK_CUR));
        std::size_t const left = active.endsAt - std::min(position, active.endsAt);
        if (left == 0 && active.failsThere) {
            errno = EIO;
            return -1;
        }
        wanted = std::min(wanted, left);
    }
    return ::syscall(SYS_read, file, octets, std::min(wanted, active.most));
}

long faultySeek(int file, long offset, int whence) {
    if (++seekCount == active.failingSeek) {
        errno = EIO;
        return -1;
    }
    return plainSeek(file, offset, whence);
}

}  // namespace

namespace TalTest {

FaultyReads::FaultyReads(ReadFaults const& faults) {
    active = faults;
    readCount = 0;
    seekCount = 0;
}

FaultyReads::~FaultyReads() { active = {}; }

std::size_t FaultyReads::reads() { return readCount; }
std::size_t FaultyReads::seeks() { return seekCount; }

}  // namespace TalTest

// Stand before those of the C library, by which file streams read.
extern "C" {

__attribute__((visibility("default"))) ssize_t read(int file, void* octets, size_t wanted) {
    return faultyRead(file, octets, wanted);
}

__attribute__((visibility("default"))) off_t lseek(int file, off_t offset, int whence) noexcept {
    return faultySeek(file, offset, whence);
}

__attribute__((visibility("default"))) off64_t lseek64(int file, off64_t offset,
                                                       int whence) noexcept {
    return faultySeek(file, offset, whence);
}
}
