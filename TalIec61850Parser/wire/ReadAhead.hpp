#pragma once

// Internal: a thread that reads a file ahead of the one that uses it.

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <thread>

namespace TalIec61850Parser::wire {

/// Reads the next octets of a file into a buffer, as many as there are at once. What it throws
/// reaches the caller of whatever needed these octets.
/// @return how many; 0 at the end of the file, and for an empty buffer
using ReadOctets = std::function<std::size_t(std::span<std::uint8_t>)>;

/// Starts a thread that runs a function.
/// @throws std::system_error  when there is none to be had
using StartThread = std::thread (*)(std::function<void()> run);

/// A thread of the C++ library that receives no signals meant for the program.
[[nodiscard]] std::thread startQuietThread(std::function<void()> run);

/// Fills a ring of blocks on a thread of its own, in the order of the file.
///
/// Used by one thread at a time. Destruction ends the thread; a read that is under way is waited
/// for, no other is begun.
class ReadAhead {
public:
    static constexpr std::size_t kBlockSize = std::size_t{256} << 10U;
    static constexpr std::size_t kBlocks = 4;
    /// Octets before each block that its user may write to.
    static constexpr std::size_t kHeadroom = std::size_t{64} << 10U;

    /// @param read  called on the other thread from now on, until it gives 0 or throws
    /// @throws std::system_error  when no thread can be started; `read` has not been called then
    ReadAhead(ReadOctets read, StartThread start);
    ReadAhead(ReadAhead const&) = delete;
    ReadAhead& operator=(ReadAhead const&) = delete;
    ~ReadAhead();

    /// Waits for the next block. Blocks that were taken before stay as they are.
    /// @return the octets that were read; none at the end of the file
    /// @pre the block before the last one has been given back, and it has not ended or thrown
    /// @throws what `read` has thrown, after all blocks before
    [[nodiscard]] std::span<std::uint8_t> take();

    /// Gives back the blocks that were taken, for the thread to fill them again.
    /// @param kept  blocks taken last that stay: 0 or 1
    void giveBack(std::size_t kept);

private:
    void fill();
    /// The octets of a block.
    /// @param number  counted from the start of the file
    [[nodiscard]] std::span<std::uint8_t> block(std::size_t number) const {
        return {octets_.get() + number % kBlocks * (kHeadroom + kBlockSize) + kHeadroom,
                kBlockSize};
    }

    ReadOctets read_;
    std::unique_ptr<std::uint8_t[]> octets_;
    std::size_t taken_ = 0;

    std::mutex mutex_;
    std::condition_variable canTake_;
    std::condition_variable canFill_;
    // Guarded by the mutex. Blocks are counted from the start of the file.
    std::size_t filled_ = 0;
    std::size_t givenBack_ = 0;
    bool isStopped_ = false;
    // Of a block, the octets that were read; written by the thread before it counts as filled.
    std::array<std::size_t, kBlocks> sizes_{};
    std::exception_ptr failure_;

    std::thread thread_;
};

}  // namespace TalIec61850Parser::wire
