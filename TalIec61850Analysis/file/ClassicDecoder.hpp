#pragma once

// Internal: the records of a classic capture.

#include <TalIec61850Analysis/file/InterfaceTable.hpp>
#include <TalIec61850Analysis/file/WalkedRecords.hpp>
#include <TalIec61850Parser/wire/CaptureFormat.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace TalIec61850Analysis::detail {

/// Decodes records in place. It keeps nothing of what it has read, so that a copy can begin at the
/// header of any record.
class ClassicDecoder {
public:
    /// @param fileSize  in octets, as it was when the file was opened
    /// @param table     has the file's interface; outlives this
    ClassicDecoder(TalIec61850Parser::wire::CaptureVariant variant, std::uint64_t fileSize,
                   InterfaceTable& table);

    /// Decodes what is there, until `walked` is full.
    /// @param octets      of the file, as far as it has been read
    /// @param fileOffset  where these are in it: a record's header, or the end of the file
    /// @return how many octets are done with, more than there are where some are to be passed over;
    ///         0 where more are needed, or `walked` is finished
    std::size_t decode(std::span<std::uint8_t const> octets, std::uint64_t fileOffset,
                       WalkedRecords& walked);

    /// How records are counted: only where the file is read the first time.
    void setCounting(bool isCounting) { isCounting_ = isCounting; }
    /// The file has grown.
    /// @param fileSize  in octets
    void setFileSize(std::uint64_t fileSize) { fileSize_ = fileSize; }

    [[nodiscard]] TalIec61850Parser::wire::CaptureVariant variant() const { return variant_; }

private:
    void read(RecordView& view, std::uint64_t fileOffset,
              TalIec61850Parser::wire::RecordHeader const& header,
              std::span<std::uint8_t const> frame) const;
    std::size_t decodeDamaged(std::span<std::uint8_t const> octets, std::uint64_t fileOffset,
                              WalkedRecords& walked) const;

    InterfaceTable* table_;
    std::uint64_t fileSize_;
    TalIec61850Parser::wire::CaptureVariant variant_;
    std::uint16_t linkType_;
    bool isCounting_ = false;
};

}  // namespace TalIec61850Analysis::detail
