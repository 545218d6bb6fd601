#include <TalIec61850Analysis/file/NextGenerationDecoder.hpp>
#include <algorithm>
#include <string>

namespace TalIec61850Analysis::detail {

namespace wire = TalIec61850Parser::wire;

namespace {

constexpr std::size_t kLongestName = 255;

CaptureDamage damageAt(CaptureDamageKind kind, std::uint64_t fileOffset) {
    return {.kind = kind, .fileOffset = fileOffset};
}

/// Ends the walk, once the records before have been handed over.
std::size_t finishWith(CaptureDamage const& damage, WalkedRecords& walked) {
    if (walked.isEmpty()) {
        walked.finish(damage);
    }
    return 0;
}

/// Ends the walk where the file has no whole block any more.
std::size_t finishAt(std::uint64_t fileOffset, std::uint64_t left, WalkedRecords& walked) {
    if (left != 0) {
        return finishWith(damageAt(fileOffset == 0 ? CaptureDamageKind::fileHeaderCut
                                                   : CaptureDamageKind::recordHeaderCut,
                                   fileOffset),
                          walked);
    }
    if (walked.isEmpty()) {
        walked.finish();
    }
    return 0;
}

/// The octets that a block of this type always has in its body.
std::size_t fixedSize(std::uint32_t type) {
    switch (type) {
        case wire::kSectionBlock:
            return wire::SectionHeader::kSize;
        case wire::kInterfaceBlock:
            return wire::InterfaceHeader::kSize;
        case wire::kStatisticsBlock:
            return wire::StatisticsHeader::kSize;
        default:
            return wire::isPacketBlock(type) ? wire::PacketHeader::sizeOf(type) : 0;
    }
}

bool isBlockLength(std::uint32_t type, std::uint32_t length) {
    std::size_t const least =
        wire::kSmallestBlock + (type == wire::kSectionBlock ? wire::SectionHeader::kSize : 0);
    return length >= least && length % wire::kBlockAlignment == 0;
}

/// Reads what options say of an interface.
/// @return false where they are cut off
bool describe(CaptureInterface& described, InterfaceUse& use, std::span<std::uint8_t const> options,
              bool isLittleEndian) {
    std::optional<std::uint8_t> resolution;
    bool const isWhole = wire::forEachOption(
        options, isLittleEndian, [&](std::uint16_t code, std::span<std::uint8_t const> value) {
            if (code == wire::kOptionInterfaceName) {
                auto const kept = value.first(std::min(value.size(), kLongestName));
                described.name.assign(kept.begin(), kept.end());
            } else if (code == wire::kOptionTimeResolution && value.size() == 1) {
                resolution = value.front();
            } else if (code == wire::kOptionTimeOffset) {
                auto const offset = wire::readOptionNumber(value, isLittleEndian);
                described.timeOffset = static_cast<std::int64_t>(offset.value_or(0));
            }
        });
    constexpr std::uint8_t microseconds = 6;
    use.timeUnit = wire::TimeUnit(resolution.value_or(microseconds), described.timeOffset);
    described.isBinaryUnit = use.timeUnit.isBinary();
    described.unitExponent = use.timeUnit.exponent();
    return isWhole;
}

/// Adds a record, its time and drops not yet set. Member by member, in place: this is most of what
/// a record costs.
inline CaptureRecord& addRecord(WalkedRecords& walked, std::uint64_t blockOffset,
                                wire::PacketHeader const& header,
                                std::span<std::uint8_t const> frame) {
    RecordView& view = walked.add();
    view.frame = frame;
    CaptureRecord& record = view.record;
    record.fileOffset = blockOffset;
    record.frameOffset = blockOffset + wire::kBlockHeaderSize + header.size;
    record.capturedSize = static_cast<std::uint32_t>(frame.size());
    record.originalSize = header.originalSize;
    return record;
}

/// Reads what options say of a packet.
/// @return false where they are cut off
bool readDropped(CaptureRecord& record, std::span<std::uint8_t const> options,
                 bool isLittleEndian) {
    return wire::forEachOption(
        options, isLittleEndian, [&](std::uint16_t code, std::span<std::uint8_t const> value) {
            if (code == wire::kOptionPacketDropped) {
                record.dropped = wire::readOptionNumber(value, isLittleEndian);
            }
        });
}

}  // namespace

std::size_t NextGenerationDecoder::decode(std::span<std::uint8_t const> octets,
                                          std::uint64_t fileOffset, WalkedRecords& walked) {
    std::size_t begin = 0;
    while (!walked.isFull() && begin <= octets.size()) {
        begin += decodeUsual(octets.subspan(begin), fileOffset + begin, walked);
        // Counts are told when the records before them have been handed over.
        if (walked.isFull() || (!walked.isEmpty() && isStatistics(octets.subspan(begin)))) {
            break;
        }
        std::size_t const used = decodeBlock(octets.subspan(begin), fileOffset + begin, walked);
        if (used == 0) {
            break;
        }
        begin += used;
    }
    return begin;
}

bool NextGenerationDecoder::isStatistics(std::span<std::uint8_t const> octets) const {
    return octets.size() >= wire::kBlockHeaderSize &&
           wire::readFileUint32(octets, 0, section_.isLittleEndian) == wire::kStatisticsBlock;
}

/// Decodes whole enhanced packet blocks that have no options and nothing wrong, as nearly all
/// blocks of a capture are: up to the first other one.
/// @return how many octets are done with
inline std::size_t NextGenerationDecoder::decodeUsual(std::span<std::uint8_t const> octets,
                                                      std::uint64_t fileOffset,
                                                      WalkedRecords& walked) const {
    if (section_.isPassedOver) {
        return 0;
    }
    return section_.isLittleEndian ? decodeUsualAs<true>(octets, fileOffset, walked)
                                   : decodeUsualAs<false>(octets, fileOffset, walked);
}

template <bool IsLittleEndian>
std::size_t NextGenerationDecoder::decodeUsualAs(std::span<std::uint8_t const> octets,
                                                 std::uint64_t fileOffset,
                                                 WalkedRecords& walked) const {
    constexpr std::size_t kTypeAndLength = wire::kBlockHeaderSize;
    constexpr std::size_t kAround = kTypeAndLength + 20 + wire::kBlockTrailerSize;
    std::size_t begin = 0;
    while (!walked.isFull() && octets.size() - begin >= kAround) {
        auto const block = octets.subspan(begin);
        if (wire::readFileUint32(block, 0, IsLittleEndian) != wire::kEnhancedPacketBlock) {
            break;
        }
        auto const header = wire::PacketHeader::read(wire::kEnhancedPacketBlock,
                                                     block.subspan(kTypeAndLength), IsLittleEndian);
        std::size_t const size = *header.capturedSize;
        std::size_t const length = kAround + wire::padded(size);
        bool const isWhole =
            size <= kLongestFrame && length <= block.size() &&
            wire::readFileUint32(block, 4, IsLittleEndian) == length &&
            wire::readFileUint32(block, length - wire::kBlockTrailerSize, IsLittleEndian) == length;
        if (!isWhole || header.interface >= section_.interfaceCount) {
            break;
        }
        std::uint32_t const index = section_.firstInterface + header.interface;
        InterfaceUse const& use = table_->uses[index];
        auto const time = use.timeUnit.nanoseconds(*header.time);
        if (!use.isKnown || !time) {
            break;
        }
        CaptureInterface& interface = table_->interfaces[index];
        CaptureRecord& record = addRecord(walked, fileOffset + begin, header,
                                          block.subspan(kTypeAndLength + header.size, size));
        record.time = captureTimeOf(*time);
        record.linkType = interface.linkType;
        record.interface = index;
        record.dropped.reset();
        interface.records += isCounting_ ? 1 : 0;
        begin += length;
    }
    return begin;
}

std::size_t NextGenerationDecoder::decodeBlock(std::span<std::uint8_t const> octets,
                                               std::uint64_t fileOffset, WalkedRecords& walked) {
    std::uint64_t const left = fileSize_ - fileOffset;
    if (left < wire::kSmallestBlock) {
        return finishAt(fileOffset, left, walked);
    }
    if (octets.size() < wire::kSmallestBlock) {
        return 0;
    }
    Block block{.fileOffset = fileOffset,
                .isLittleEndian = section_.isLittleEndian,
                .type = wire::readFileUint32(octets, 0, section_.isLittleEndian),
                .length = 0,
                .body = {}};
    if (auto const damage = readLength(block, octets)) {
        return finishWith(*damage, walked);
    }
    if (block.length > left) {
        return decodeCutBlock(octets, block, walked);
    }
    if (block.length > kLongestBlock) {
        return passOver(block, walked);
    }
    if (octets.size() < block.length) {
        return 0;
    }
    if (wire::readFileUint32(octets, block.length - wire::kBlockTrailerSize,
                             block.isLittleEndian) != block.length) {
        walked.note({.kind = CaptureDamageKind::blockLengthsDiffer,
                     .fileOffset = fileOffset,
                     .claimedSize = block.length});
    }
    block.body = octets.subspan(wire::kBlockHeaderSize, block.length - wire::kSmallestBlock);
    take(block, walked);
    return block.length;
}

/// Reads the length of a block, which takes its byte order.
/// @return damage, where that cannot be told or is none
inline std::optional<CaptureDamage> NextGenerationDecoder::readLength(
    Block& block, std::span<std::uint8_t const> octets) {
    // Its type reads the same in both byte orders.
    if (block.type == wire::kSectionBlock) {
        auto const order = wire::findByteOrder(octets);
        if (!order) {
            return damageAt(CaptureDamageKind::byteOrder, block.fileOffset);
        }
        block.isLittleEndian = *order;
    }
    block.length = wire::readFileUint32(octets, 4, block.isLittleEndian);
    if (!isBlockLength(block.type, block.length)) {
        return CaptureDamage{.kind = CaptureDamageKind::blockLength,
                             .fileOffset = block.fileOffset,
                             .claimedSize = block.length};
    }
    return std::nullopt;
}

/// A block that claims more octets than the file holds. Of a packet, what is there is shown.
std::size_t NextGenerationDecoder::decodeCutBlock(std::span<std::uint8_t const> octets, Block block,
                                                  WalkedRecords& walked) const {
    std::uint64_t const left = fileSize_ - block.fileOffset;
    auto const shown = static_cast<std::size_t>(std::min<std::uint64_t>(left, kLongestBlock));
    if (!walked.isEmpty() || octets.size() < shown) {
        return 0;
    }
    block.body = octets.subspan(wire::kBlockHeaderSize, shown - wire::kBlockHeaderSize);
    WalkedRecords cut;
    if (!section_.isPassedOver && wire::isPacketBlock(block.type) &&
        block.body.size() >= fixedSize(block.type)) {
        NextGenerationDecoder reader = *this;
        reader.setCounting(false);
        reader.takePacket(block, cut);
    }
    if (!cut.isEmpty()) {
        walked.setCut(*cut.begin());
    }
    walked.finish({.kind = block.fileOffset == 0 ? CaptureDamageKind::fileHeaderCut
                                                 : CaptureDamageKind::recordCut,
                   .fileOffset = block.fileOffset,
                   .claimedSize = block.length,
                   .missingSize = block.length - left});
    return 0;
}

/// A block that is too long to be looked at.
std::size_t NextGenerationDecoder::passOver(Block const& block, WalkedRecords& walked) {
    if (fixedSize(block.type) != 0) {
        walked.note({.kind = CaptureDamageKind::recordTooLong,
                     .fileOffset = block.fileOffset,
                     .claimedSize = block.length});
    }
    if (block.type == wire::kSectionBlock) {
        // Without it, nothing of what follows can be told.
        section_.isLittleEndian = block.isLittleEndian;
        section_.isPassedOver = true;
        section_.end.reset();
    } else if (block.type == wire::kInterfaceBlock && !section_.isPassedOver) {
        addInterface(block, walked);
    }
    return block.length;
}

void NextGenerationDecoder::take(Block const& block, WalkedRecords& walked) {
    if (block.type == wire::kSectionBlock) {
        startSection(block, walked);
        return;
    }
    if (section_.isPassedOver) {
        return;
    }
    bool const isShort = block.body.size() < fixedSize(block.type);
    if (isShort) {
        walked.note(damageAt(CaptureDamageKind::blockTooShort, block.fileOffset));
    }
    if (block.type == wire::kInterfaceBlock) {
        addInterface(block, walked);
    } else if (isShort) {
        return;
    } else if (block.type == wire::kStatisticsBlock) {
        takeStatistics(block, walked);
    } else if (wire::isPacketBlock(block.type)) {
        takePacket(block, walked);
    }
}

void NextGenerationDecoder::startSection(Block const& block, WalkedRecords& walked) {
    auto const noteCut = [&](Section const& section, std::uint64_t end) {
        walked.note({.kind = CaptureDamageKind::sectionCut,
                     .fileOffset = section.fileOffset,
                     .claimedSize = *section.end - section.fileOffset,
                     .missingSize = *section.end - end});
    };
    if (sectionHolds(block.fileOffset) && *section_.end <= fileSize_) {
        noteCut(section_, block.fileOffset);
    }
    auto const header = wire::SectionHeader::read(block.body, block.isLittleEndian);
    section_ = {.isLittleEndian = block.isLittleEndian,
                .isPassedOver = header.major != wire::SectionHeader::kKnownMajor,
                .firstInterface = section_.firstInterface + section_.interfaceCount,
                .interfaceCount = 0,
                .fileOffset = block.fileOffset,
                .end = std::nullopt};
    if (section_.isPassedOver) {
        walked.note(damageAt(CaptureDamageKind::unknownVersion, block.fileOffset));
    }
    std::uint64_t const start = block.fileOffset + block.length;
    if (header.hasLength() && header.length <= ~std::uint64_t{0} - start) {
        section_.end = start + header.length;
        if (*section_.end > fileSize_) {
            noteCut(section_, fileSize_);
        }
    }
}

/// Also where its description cannot be read, so that those after it keep their numbers.
void NextGenerationDecoder::addInterface(Block const& block, WalkedRecords& walked) {
    std::size_t const index = std::size_t{section_.firstInterface} + section_.interfaceCount;
    if (index >= InterfaceTable::kMost) {
        walked.note(damageAt(CaptureDamageKind::tooManyInterfaces, block.fileOffset));
        return;
    }
    ++section_.interfaceCount;
    CaptureInterface described;
    InterfaceUse use;
    described.fileOffset = block.fileOffset;
    use.isKnown = block.body.size() >= wire::InterfaceHeader::kSize;
    if (use.isKnown) {
        auto const header = wire::InterfaceHeader::read(block.body, block.isLittleEndian);
        described.linkType = header.linkType;
        described.snapLength = header.snapLength;
        if (!describe(described, use, block.body.subspan(wire::InterfaceHeader::kSize),
                      block.isLittleEndian)) {
            walked.note(damageAt(CaptureDamageKind::optionCut, block.fileOffset));
        }
        if (!use.timeUnit.isUsable()) {
            walked.note(damageAt(CaptureDamageKind::timeResolution, block.fileOffset));
        }
    }
    if (index == table_->interfaces.size()) {
        table_->interfaces.push_back(std::move(described));
        table_->uses.push_back(use);
    }
}

void NextGenerationDecoder::takeStatistics(Block const& block, WalkedRecords& walked) const {
    auto const header = wire::StatisticsHeader::read(block.body, block.isLittleEndian);
    auto const index = findInterface(header.interface);
    if (!index) {
        walked.note(damageAt(CaptureDamageKind::unknownInterface, block.fileOffset));
        return;
    }
    CaptureInterface counted = table_->interfaces[*index];
    bool const isWhole = wire::forEachOption(
        block.body.subspan(wire::StatisticsHeader::kSize), block.isLittleEndian,
        [&](std::uint16_t code, std::span<std::uint8_t const> value) {
            auto const count = wire::readOptionNumber(value, block.isLittleEndian);
            if (!count) {
                return;
            }
            if (code == wire::kOptionInterfaceReceived) {
                counted.received = count;
            } else if (code == wire::kOptionInterfaceDropped) {
                counted.dropped = count;
            } else if (code == wire::kOptionSystemDropped) {
                counted.droppedBySystem = count;
            }
        });
    if (!isWhole) {
        walked.note(damageAt(CaptureDamageKind::optionCut, block.fileOffset));
    }
    if (isCounting_) {
        table_->interfaces[*index] = std::move(counted);
    }
}

void NextGenerationDecoder::takePacket(Block const& block, WalkedRecords& walked) const {
    auto const header = wire::PacketHeader::read(block.type, block.body, block.isLittleEndian);
    auto const index = findInterface(header.interface);
    if (!index) {
        walked.note(damageAt(CaptureDamageKind::unknownInterface, block.fileOffset));
        return;
    }
    CaptureInterface& interface = table_->interfaces[*index];
    std::size_t const claimed = header.frameSize(interface.snapLength);
    if (!canHold(block, header, claimed, walked)) {
        return;
    }
    auto const rest = block.body.subspan(header.size);
    auto const frame = rest.first(std::min({claimed, rest.size(), kLongestFrame}));
    CaptureRecord& record = addRecord(walked, block.fileOffset, header, frame);
    record.time.reset();
    record.linkType = interface.linkType;
    record.interface = *index;
    record.dropped = header.dropped;
    auto const& unit = table_->uses[*index].timeUnit;
    if (header.time && unit.isUsable()) {
        if (auto const time = unit.nanoseconds(*header.time)) {
            record.time = captureTimeOf(*time);
        } else {
            walked.note(damageAt(CaptureDamageKind::timeOutOfRange, block.fileOffset));
        }
    }
    std::size_t const used = std::min<std::size_t>(wire::padded(claimed), rest.size());
    if (block.type == wire::kEnhancedPacketBlock && used < rest.size() &&
        !readDropped(record, rest.subspan(used), block.isLittleEndian)) {
        walked.note(damageAt(CaptureDamageKind::optionCut, block.fileOffset));
    }
    if (isCounting_) {
        ++interface.records;
    }
}

/// Whether a block has all octets of its frame, and not more than any frame; if not, that is noted.
inline bool NextGenerationDecoder::canHold(Block const& block, wire::PacketHeader const& header,
                                           std::size_t claimed, WalkedRecords& walked) const {
    if (claimed > block.length - wire::kSmallestBlock - header.size) {
        walked.note({.kind = CaptureDamageKind::frameTooLong,
                     .fileOffset = block.fileOffset,
                     .claimedSize = claimed});
        return false;
    }
    bool const isCut = block.fileOffset + block.length > fileSize_;
    if (!isCut && claimed > kLongestFrame) {
        walked.note({.kind = CaptureDamageKind::recordTooLong,
                     .fileOffset = block.fileOffset,
                     .claimedSize = block.length});
        return false;
    }
    return true;
}

/// @param number  as blocks have it, counted in the section
/// @return its place in the table
std::optional<std::uint32_t> NextGenerationDecoder::findInterface(std::uint32_t number) const {
    if (number >= section_.interfaceCount) {
        return std::nullopt;
    }
    std::uint32_t const index = section_.firstInterface + number;
    return table_->uses[index].isKnown ? std::optional(index) : std::nullopt;
}

}  // namespace TalIec61850Analysis::detail
