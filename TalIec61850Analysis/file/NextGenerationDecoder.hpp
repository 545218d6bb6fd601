#pragma once

// Internal: the records of a next-generation capture.

#include <TalIec61850Analysis/file/InterfaceTable.hpp>
#include <TalIec61850Analysis/file/WalkedRecords.hpp>
#include <TalIec61850Parser/wire/NextGenerationFormat.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace TalIec61850Analysis::detail {

/// Decodes blocks in place. Of what it has read it keeps the section alone, so that a copy can
/// begin at the block after which it was made.
class NextGenerationDecoder {
public:
    /// @param fileSize  in octets, as it was when the file was opened
    /// @param table     is given the file's interfaces; outlives this
    NextGenerationDecoder(std::uint64_t fileSize, InterfaceTable& table)
        : table_(&table), fileSize_(fileSize) {}

    /// Decodes what is there, until `walked` is full.
    /// @param octets      of the file, as far as it has been read
    /// @param fileOffset  where these are in it: a block, or the end of the file
    /// @return how many octets are done with, more than there are where some are to be passed over;
    ///         0 where more are needed, or `walked` is finished
    std::size_t decode(std::span<std::uint8_t const> octets, std::uint64_t fileOffset,
                       WalkedRecords& walked);

    /// How records and statistics are counted: only where the file is read the first time.
    void setCounting(bool isCounting) { isCounting_ = isCounting; }
    /// The file has grown.
    /// @param fileSize  in octets
    void setFileSize(std::uint64_t fileSize) { fileSize_ = fileSize; }

    [[nodiscard]] bool isLittleEndian() const { return section_.isLittleEndian; }

    /// Whether an offset is in the section read last, as its header says.
    [[nodiscard]] bool sectionHolds(std::uint64_t fileOffset) const {
        return section_.end && fileOffset < *section_.end;
    }

private:
    struct Section {
        bool isLittleEndian = false;
        /// Of a version that is not known.
        bool isPassedOver = false;
        /// Its interfaces in the table, as far as they have been described.
        std::uint32_t firstInterface = 0;
        std::uint32_t interfaceCount = 0;
        std::uint64_t fileOffset = 0;
        /// The offset in the file where it ends, where its header says so.
        std::optional<std::uint64_t> end;
    };

    struct Block {
        std::uint64_t fileOffset = 0;
        bool isLittleEndian = false;
        std::uint32_t type = 0;
        std::uint32_t length = 0;
        /// What is between the two lengths, as far as the file holds it.
        std::span<std::uint8_t const> body;
    };

    [[nodiscard]] bool isStatistics(std::span<std::uint8_t const> octets) const;
    [[nodiscard]] std::size_t decodeUsual(std::span<std::uint8_t const> octets,
                                          std::uint64_t fileOffset, WalkedRecords& walked) const;
    template <bool IsLittleEndian>
    [[nodiscard]] std::size_t decodeUsualAs(std::span<std::uint8_t const> octets,
                                            std::uint64_t fileOffset, WalkedRecords& walked) const;
    std::size_t decodeBlock(std::span<std::uint8_t const> octets, std::uint64_t fileOffset,
                            WalkedRecords& walked);
    [[nodiscard]] static std::optional<CaptureDamage> readLength(
        Block& block, std::span<std::uint8_t const> octets);
    std::size_t decodeCutBlock(std::span<std::uint8_t const> octets, Block block,
                               WalkedRecords& walked) const;
    std::size_t passOver(Block const& block, WalkedRecords& walked);
    void take(Block const& block, WalkedRecords& walked);
    void startSection(Block const& block, WalkedRecords& walked);
    void addInterface(Block const& block, WalkedRecords& walked);
    void takeStatistics(Block const& block, WalkedRecords& walked) const;
    void takePacket(Block const& block, WalkedRecords& walked) const;
    bool canHold(Block const& block, TalIec61850Parser::wire::PacketHeader const& header,
                 std::size_t claimed, WalkedRecords& walked) const;
    [[nodiscard]] std::optional<std::uint32_t> findInterface(std::uint32_t number) const;

    InterfaceTable* table_;
    std::uint64_t fileSize_;
    Section section_;
    bool isCounting_ = false;
};

}  // namespace TalIec61850Analysis::detail
