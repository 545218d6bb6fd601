#pragma once

// Internal: walks the records of a capture file, of either format, from any record on.

#include <TalIec61850Analysis/file/ClassicDecoder.hpp>
#include <TalIec61850Analysis/file/NextGenerationDecoder.hpp>
#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/file/ReadMode.hpp>
#include <TalIec61850Analysis/file/WalkedRecords.hpp>
#include <TalIec61850Parser/wire/BlockReader.hpp>
#include <cstddef>
#include <cstdint>
#include <span>
#include <variant>

namespace TalIec61850Analysis::detail {

/// What decodes a file; a copy of it can begin where it was copied.
using Decoder = std::variant<ClassicDecoder, NextGenerationDecoder>;

/// The same decoder, which counts records and statistics or does not.
[[nodiscard]] inline Decoder withCounting(Decoder decoder, bool isCounting) {
    std::visit([&](auto& either) { either.setCounting(isCounting); }, decoder);
    return decoder;
}

/// The same decoder for a file that has grown.
[[nodiscard]] inline Decoder withFileSize(Decoder decoder, std::uint64_t fileSize) {
    std::visit([&](auto& either) { either.setFileSize(fileSize); }, decoder);
    return decoder;
}

/// A walk over records, some of them at a time.
class RecordWalk {
public:
    /// @param file      outlives this
    /// @param fileSize  as the decoder was given it
    RecordWalk(Descriptor const& file, std::uint64_t fileSize, std::uint64_t fileOffset,
               Decoder const& decoder, ReadMode mode = ReadMode::plain)
        : blocks_(readFrom(file, fileOffset, fileSize), mode == ReadMode::ahead),
          position_(fileOffset),
          decoder_(decoder) {}

    /// The next records; those before are no longer valid.
    /// @return none after the last; see `walked` for why
    /// @throws std::system_error  the file cannot be read: there are none after that
    [[nodiscard]] std::span<RecordView const> next();

    /// The records read last, and the damage up to them.
    [[nodiscard]] WalkedRecords const& walked() const { return walked_; }
    /// Nothing can be read.
    void finish(CaptureDamage const& damage) { walked_.finish(damage); }

    /// Where the record or block after those read last is in the file; that which the file ends
    /// inside is not read.
    [[nodiscard]] std::uint64_t position() const { return position_; }
    /// What decodes it.
    [[nodiscard]] Decoder const& decoder() const { return decoder_; }

private:
    std::size_t decodeSome();
    void readOn();
    void use(std::size_t count);

    TalIec61850Parser::wire::BlockReader blocks_;
    std::span<std::uint8_t const> unread_;
    std::uint64_t position_;
    /// Octets before that position that have not been read, and are not wanted.
    std::uint64_t skipped_ = 0;
    Decoder decoder_;
    WalkedRecords walked_;
};

}  // namespace TalIec61850Analysis::detail
