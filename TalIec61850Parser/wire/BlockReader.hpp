#pragma once

// Internal: shows a file in blocks, and what a block cut off together with the next one.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <TalIec61850Parser/wire/ReadAhead.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace TalIec61850Parser::wire {

/// The octets of a file, block after block, front to back.
///
/// Memory follows what has been read: a first block of 16 KiB, so that opening many small files is
/// cheap, then 256 KiB, and twice as much whenever that is full of what the user has not finished
/// with. Reading ahead takes four blocks of 256 KiB with room before each, as soon as a file turns
/// out to be larger than the first block; a smaller one is never worth a thread.
class BlockReader {
public:
    using Read = ReadOctets;

    static constexpr std::size_t kBlockSize = ReadAhead::kBlockSize;
    static constexpr std::size_t kFirstBlockSize = std::size_t{16} << 10U;

    /// @param read       reads the file from its start; copied when a thread is started
    /// @param readAhead  have `read` called on another thread. Where none can be started, that is
    ///                   no error: it is called on the thread that calls `next`
    /// @param start      how a thread is started
    BlockReader(Read read, bool readAhead, StartThread start = &startQuietThread);
    BlockReader(BlockReader&&) noexcept;
    BlockReader& operator=(BlockReader&&) noexcept;
    ~BlockReader();

    /// What the user has not finished with, and after it the next octets of the file.
    /// @param unread  the end of the span that was given last, up to all of it
    /// @return valid until the next call; of the size of `unread` when the file has ended. The
    ///         octets of `unread` may have moved then too: what was given before is not valid
    /// @throws what `read` throws, after all octets before; the file has then ended
    [[nodiscard]] Octets next(Octets unread);

private:
    [[nodiscard]] bool isReadingAhead();
    /// @return how many octets there are after `unread`, which has moved to the buffer's front
    [[nodiscard]] std::size_t readOn(Octets unread);
    [[nodiscard]] Octets takeAhead(Octets unread);
    /// Has the buffer begin with these octets, which may be in it already.
    /// @param capacity  of the buffer from now on, at least; more than there are octets
    void moveToFront(Octets octets, std::size_t capacity);

    Read read_;
    StartThread start_;
    bool wantsReadAhead_;
    bool hasEnded_ = false;
    std::uint64_t octetsRead_ = 0;
    std::unique_ptr<std::uint8_t[]> buffer_;
    std::size_t capacity_ = 0;
    std::unique_ptr<ReadAhead> ahead_;
};

}  // namespace TalIec61850Parser::wire
