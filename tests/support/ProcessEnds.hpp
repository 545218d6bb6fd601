#pragma once

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdlib.h>  // posix_openpt is POSIX's
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "support/Bytes.hpp"

// What a program that is run may have at the other end of its descriptors: terminals and pipes; and
// how it is given its own ends.

namespace TalTest {

/// @throws std::system_error  with errno, when it is not done
inline void require(bool isDone, char const* what) {
    if (!isDone) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

/// An open descriptor of the test, which programs that it starts do not inherit.
class OwnDescriptor {
public:
    OwnDescriptor() = default;
    OwnDescriptor(OwnDescriptor const&) = delete;
    OwnDescriptor& operator=(OwnDescriptor const&) = delete;
    ~OwnDescriptor() { close(); }

    void own(int number) { number_ = number; }
    void close() {
        if (number_ >= 0) {
            ::close(number_);
        }
        number_ = -1;
    }
    [[nodiscard]] bool isOpen() const { return number_ >= 0; }
    [[nodiscard]] int number() const { return number_; }

    /// Takes what has arrived, without waiting.
    void readInto(std::string& text) const {
        std::array<char, 4096> block{};
        pollfd state{.fd = number_, .events = POLLIN, .revents = 0};
        while (::poll(&state, 1, 0) == 1 && (state.revents & POLLIN) != 0) {
            ssize_t const count = ::read(number_, block.data(), block.size());
            if (count <= 0) {
                return;
            }
            text.append(block.data(), static_cast<std::size_t>(count));
        }
    }

private:
    int number_ = -1;
};

/// A terminal: what a program writes to its far end can be read at the near one, as it was written.
class Terminal {
public:
    explicit Terminal(int columns) {
        near_.own(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
        int const number = near_.number();
        require(number >= 0 && ::grantpt(number) == 0 && ::unlockpt(number) == 0, "posix_openpt");
        far_.own(::open(::ptsname(number), O_RDWR | O_NOCTTY | O_CLOEXEC));
        require(far_.isOpen(), "ptsname");
        winsize size{};
        size.ws_col = static_cast<unsigned short>(columns);
        require(::ioctl(far_.number(), TIOCSWINSZ, &size) == 0, "TIOCSWINSZ");
        termios mode{};
        require(::tcgetattr(far_.number(), &mode) == 0, "tcgetattr");
        mode.c_oflag &= ~static_cast<tcflag_t>(OPOST);  // \n stays \n
        require(::tcsetattr(far_.number(), TCSANOW, &mode) == 0, "tcsetattr");
    }

    [[nodiscard]] int nearEnd() const { return near_.number(); }
    [[nodiscard]] int farEnd() const { return far_.number(); }
    void readInto(std::string& text) const { near_.readInto(text); }

private:
    OwnDescriptor near_;
    OwnDescriptor far_;
};

/// A pipe; a program gets one end, the test has the other.
class Pipe {
public:
    Pipe() {
        std::array<int, 2> ends{};
        require(::pipe2(ends.data(), O_CLOEXEC) == 0, "pipe2");
        reading.own(ends[0]);
        writing.own(ends[1]);
    }

    OwnDescriptor reading;
    OwnDescriptor writing;
};

/// Writes octets into a pipe as the reader takes them. Keeps the reading end too, so that a reader
/// who has seen enough is no broken pipe.
class PipeFeed {
public:
    explicit PipeFeed(Bytes octets) : octets_(std::move(octets)) {
        require(::fcntl(pipe_.writing.number(), F_SETFL, O_NONBLOCK) == 0, "fcntl");
    }

    [[nodiscard]] int readingEnd() const { return pipe_.reading.number(); }

    /// Below zero once all is written.
    [[nodiscard]] int writingEnd() const { return pipe_.writing.number(); }

    /// Writes what there is room for; closes the pipe after the last octet.
    void feed() {
        while (pipe_.writing.isOpen()) {
            bool const isDone = written_ == octets_.size();
            ssize_t const count = isDone ? 0
                                         : ::write(pipe_.writing.number(), &octets_[written_],
                                                   octets_.size() - written_);
            if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
                return;
            }
            if (count <= 0) {
                pipe_.writing.close();
            } else {
                written_ += static_cast<std::size_t>(count);
            }
        }
    }

private:
    Pipe pipe_;
    Bytes octets_;
    std::size_t written_ = 0;
};

/// What a child is to do with its descriptors before it starts.
class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    FileActions(FileActions const&) = delete;
    FileActions& operator=(FileActions const&) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

    void open(int number, std::string const& path, int flags) {
        posix_spawn_file_actions_addopen(&actions_, number, path.c_str(), flags, 0600);
    }
    void duplicate(int from, int to) { posix_spawn_file_actions_adddup2(&actions_, from, to); }
    void close(int number) { posix_spawn_file_actions_addclose(&actions_, number); }
    void changeFolder(std::string const& path) {
        posix_spawn_file_actions_addchdir_np(&actions_, path.c_str());
    }
    [[nodiscard]] posix_spawn_file_actions_t const* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

}  // namespace TalTest
