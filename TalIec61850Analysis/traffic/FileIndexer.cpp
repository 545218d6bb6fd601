#include <TalIec61850Analysis/packet/Integer.hpp>
#include <TalIec61850Analysis/packet/RedundancyFit.hpp>
#include <TalIec61850Analysis/traffic/FileIndexer.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <algorithm>
#include <chrono>
#include <cstring>
#include <functional>
#include <string_view>
#include <utility>
#include <variant>

namespace TalIec61850Analysis::detail {

namespace {

namespace wire = TalIec61850Parser::wire;

/// Targets that are kept apart take this many at most.
constexpr std::size_t kMaxOtherTargets = std::size_t{1} << 16U;
constexpr std::uint32_t kMaxWord = std::numeric_limits<std::uint32_t>::max();

/// Where the EtherType is that a frame starts with.
constexpr std::size_t etherTypeOffset(std::uint16_t linkType) {
    switch (linkType) {
        case kLinkTypeCooked:
            return wire::kCooked.protocolOffset;
        case kLinkTypeCooked2:
            return wire::kCooked2.protocolOffset;
        default:
            return wire::kEtherTypeOffset;
    }
}

/// What tells patterns apart besides the octets.
constexpr std::uint8_t varietyOf(std::uint16_t linkType, bool isSnapped) {
    auto const link = static_cast<unsigned>(linkType == kLinkTypeCooked    ? 1
                                            : linkType == kLinkTypeCooked2 ? 2
                                                                           : 0);
    return static_cast<std::uint8_t>(link << 1U | (isSnapped ? 1U : 0U));
}

/// Whether a frame that starts with this EtherType can be GOOSE or SV.
constexpr bool mayBeRead(std::uint16_t etherType) {
    return etherType == wire::kEtherTypeSv || etherType == wire::kEtherTypeGoose ||
           wire::isVlanTpid(etherType) || etherType == wire::kEtherTypeHsr;
}

/// The UDP payload to or from the port that session messages have; empty for anything else.
Octets sessionOf(std::uint16_t etherType, Octets packet) {
    constexpr std::uint16_t kIpv4 = 0x0800;
    constexpr std::uint16_t kIpv6 = 0x86DD;
    constexpr std::uint8_t kUdp = 17;
    constexpr std::uint16_t kSessionPort = 102;
    constexpr std::size_t kIpv4Size = 20;
    constexpr std::size_t kIpv6Size = 40;
    constexpr std::size_t kUdpSize = 8;
    std::size_t size = 0;
    if (etherType == kIpv4) {
        constexpr std::uint16_t kFragmentOffset = 0x1FFF;
        if (packet.size() < kIpv4Size || packet[0] >> 4U != 4 || packet[9] != kUdp ||
            (wire::readUint16(packet, 6) & kFragmentOffset) != 0) {
            return {};
        }
        size = std::max(kIpv4Size, std::size_t{4} * (packet[0] & 0xFU));
    } else if (etherType == kIpv6) {
        if (packet.size() < kIpv6Size || packet[6] != kUdp) {
            return {};
        }
        size = kIpv6Size;
    }
    if (size == 0 || packet.size() < size + kUdpSize) {
        return {};
    }
    bool const isSession = wire::readUint16(packet, size) == kSessionPort ||
                           wire::readUint16(packet, size + 2) == kSessionPort;
    return isSession ? packet.subspan(size + kUdpSize) : Octets();
}

/// The number of octets that end at `end`, eight at most.
std::uint64_t readEndingAt(std::uint8_t const* end, std::uint32_t size) {
    std::uint64_t word = 0;
    std::memcpy(&word, end - sizeof word, sizeof word);
    if constexpr (std::endian::native == std::endian::little) {
        word = __builtin_bswap64(word);
    }
    return word & ~std::uint64_t{0} >> (64U - 8U * size);
}

std::size_t hashOf(std::optional<std::string> const& text) {
    return text ? std::hash<std::string_view>()(*text) : 1;
}

std::size_t hashOf(std::optional<Readable<std::uint64_t>> const& number) {
    auto const* const value = number ? std::get_if<std::uint64_t>(&*number) : nullptr;
    return value != nullptr ? *value : number.has_value();
}

std::size_t hashOf(StreamAttributes const& attributes) {
    constexpr std::size_t kFactor = 0x9E3779B97F4A7C15U;
    std::size_t hash = attributes.asdus;
    for (std::size_t const part :
         {hashOf(attributes.datSet), hashOf(attributes.goID), hashOf(attributes.confRev),
          hashOf(attributes.smpRate), hashOf(attributes.smpMod),
          std::size_t{attributes.isCut} << 1U | std::size_t{attributes.simulatedBit}}) {
        hash = (hash ^ part) * kFactor;
        hash ^= hash >> 32U;
    }
    return hash;
}

}  // namespace

inline void FileIndexer::countRecord(CaptureRecord const& record) {
    CaptureSummary& summary = file_.summary;
    ++summary.records;
    summary.capturedOctets += record.capturedSize;
    summary.originalOctets += record.originalSize;
    summary.snappedFrames += record.originalSize > record.capturedSize ? 1 : 0;
    if (record.time) {
        std::int64_t const time = record.time->time_since_epoch().count();
        first_ = std::min(first_, time);
        last_ = std::max(last_, time);
    }
    if (record.dropped) {
        summary.dropped = summary.dropped.value_or(0) + *record.dropped;
    }
    if (lastLinkCount_ == nullptr || lastLinkType_ != record.linkType) {
        lastLinkType_ = record.linkType;
        lastLinkCount_ = &summary.linkTypes[record.linkType];
    }
    ++*lastLinkCount_;
}

inline void FileIndexer::addPacket(Target const& target, PacketRow const& row, Octets frame) const {
    if (target.stream == nullptr) {
        return;
    }
    Collected& stream = *target.stream;
    if (stream.attributes != target.attributes) [[unlikely]] {
        stream.changes.push_back({.firstPacket = static_cast<std::uint32_t>(stream.packets.size()),
                                  .attributes = target.attributes});
        stream.attributes = target.attributes;
    }
    PacketRow& added = stream.packets.add(file_.summary.fileSize, row.frameOffset);
    added.time = row.time;
    added.frameOffset = row.frameOffset;
    added.pduOffset = row.pduOffset;
    added.sequence = row.sequence;
    added.asdu = target.asdu;
    added.flags = row.flags | target.flags;
    // The octets before a counter are there: those of the header at least.
    auto const isPlain = [](CounterPlace const& place) { return place.size - 1 < 4; };
    if (isPlain(target.first) && isPlain(target.second)) [[likely]] {
        std::uint8_t const* const octets = frame.data();
        added.first = static_cast<std::uint32_t>(
            readEndingAt(octets + target.first.offset + target.first.size, target.first.size));
        added.second = static_cast<std::uint32_t>(
            readEndingAt(octets + target.second.offset + target.second.size, target.second.size));
        bool const isGoose = stream.protocol == StreamProtocol::goose;
        bool const hasSign =
            ((octets[target.first.offset] | octets[target.second.offset]) & 0x80U) != 0;
        added.flags |= isGoose && hasSign ? PacketFlags::kNegative : std::uint16_t{0};
        if (isGoose || added.second <= std::numeric_limits<std::uint8_t>::max()) [[likely]] {
            return;
        }
    }
    readOddCounters(target, frame, added);
}

[[gnu::always_inline]] inline void FileIndexer::addFrame(Result const& result, Target const* others,
                                                         RecordView const& view) {
    Octets const frame = view.frame;
    CaptureRecord const& record = view.record;
    ++(result.protocol == StreamProtocol::goose ? file_.summary.gooseFrames
                                                : file_.summary.svFrames);
    if (result.unread != 0) [[unlikely]] {
        file_.summary.unread.push_back({.frameOffset = record.frameOffset,
                                        .time = record.time,
                                        .protocol = result.protocol,
                                        .reason = static_cast<UnreadReason>(result.unread - 1)});
    }
    if (!result.hasTarget) {
        return;
    }
    PacketRow row;
    row.time = record.time ? record.time->time_since_epoch().count() : kNoTime;
    row.frameOffset = record.frameOffset;
    row.pduOffset = result.pduOffset;
    row.sequence = 0;
    unsigned flags = 0;
    bool isB = false;
    auto redundancy = Redundancy::none;
    if (result.hasHsr) [[unlikely]] {
        auto const tag = wire::readHsrTag(frame.subspan(result.lsduOffset));
        redundancy = Redundancy::hsr;
        isB = tag.letter() == 'B';
        row.sequence = tag.sequence;
        bool const fits =
            hsrSizeFits(result.lsduOffset, tag.lsduSize, static_cast<std::size_t>(result.pduEnd),
                        std::max<std::size_t>(frame.size(), record.originalSize));
        flags |= fits ? 0U : unsigned{PacketFlags::kHsrMisfit};
    } else if (result.pduEnd + wire::kPrpTrailerSize <= frame.size() &&
               record.originalSize <= frame.size()) {
        // Mostly it is the end of the frame.
        auto found = prpTrailerBefore(frame, frame.size(), result.lsduOffset, false);
        if (!found) {
            found = findPrpTrailer(frame, static_cast<std::size_t>(result.pduEnd),
                                   result.lsduOffset, false);
        }
        if (found) {
            redundancy = Redundancy::prp;
            isB = found->trailer.lan() == 'B';
            row.sequence = found->trailer.sequence;
        }
    }
    flags |= static_cast<unsigned>(redundancy) << PacketFlags::kRedundancyShift;
    flags |= isB ? unsigned{PacketFlags::kLaneB} : 0U;
    row.flags = static_cast<std::uint16_t>(flags);
    addPacket(result.target, row, frame);
    for (std::uint32_t i = 0; i < result.otherCount; ++i) {
        addPacket(others[i], row, frame);
    }
}

void FileIndexer::add(RecordView const& view) {
    CaptureRecord const& record = view.record;
    countRecord(record);
    if (!isReadable(record.linkType)) {
        return;
    }
    Octets const frame = view.frame;
    if (frame.size() < linkHeaderSize(record.linkType)) {
        countOther(0, {});
        return;
    }
    std::uint16_t const etherType = wire::readUint16(frame, etherTypeOffset(record.linkType));
    if (!mayBeRead(etherType)) {
        countOther(etherType, frame.subspan(linkHeaderSize(record.linkType)));
        return;
    }
    std::uint8_t const variety = varietyOf(record.linkType, record.originalSize > frame.size());
    Result const* result = nullptr;
    std::vector<Target> const* others = &otherTargets_;
    if (memoryUse_ == WalkMemory::on) {
        result = memory_.findNextInTurn(frame, variety);
        if (result == nullptr) {
            result = memory_.find(frame, variety);
        }
    }
    if (result == nullptr) [[unlikely]] {
        if (!walk(view, variety)) {
            return;
        }
        result = &walked_;
        others = &walkedTargets_;
    }
    addFrame(*result, others->data() + result->firstOther, view);
    if (Result const* const next = memory_.nextInTurn()) {
        // Of many streams, few are in a near cache.
        __builtin_prefetch(next->target.stream, 1);
    }
}

void FileIndexer::countOther(std::uint16_t etherType, Octets payload) {
    constexpr std::uint16_t kFirstEtherType = 0x0600;
    std::uint16_t const counted = etherType < kFirstEtherType ? std::uint16_t{0} : etherType;
    if (lastOtherCount_ == nullptr || lastEtherType_ != counted) {
        lastEtherType_ = counted;
        lastOtherCount_ = &file_.summary.otherFrames[counted];
    }
    ++*lastOtherCount_;
    Octets session = sessionOf(etherType, payload);
    // The connectionless transport has two octets in front.
    if (session.size() > 2 && session[0] == 0x01 && session[1] == 0x40) {
        session = session.subspan(2);
    }
    constexpr std::uint8_t kGooseSession = 0xA1;
    constexpr std::uint8_t kSvSession = 0xA2;
    if (!session.empty()) {
        file_.summary.routableGooseFrames += session[0] == kGooseSession ? 1 : 0;
        file_.summary.routableSvFrames += session[0] == kSvSession ? 1 : 0;
    }
}

/// @return whether `walked_` and `walkedTargets_` are what the frame is
bool FileIndexer::walk(RecordView const& view, std::uint8_t variety) {
    Octets const frame = view.frame;
    walkFrame(frame, {.linkType = view.record.linkType, .originalSize = view.record.originalSize},
              walk_);
    if (!walk_.protocol) {
        countOther(walk_.header.etherType.value_or(0), frame.subspan(walk_.header.size));
        return false;
    }
    walkedTargets_.clear();
    walked_ = resultOf(walkedTargets_);
    if (memoryUse_ == WalkMemory::off || frame.size() > Memory::kMaxFrameSize ||
        !memory_.wantsMore()) {
        return true;
    }
    if (memory_.isEmpty()) {
        otherTargets_.clear();
    }
    if (otherTargets_.size() + walkedTargets_.size() > kMaxOtherTargets) {
        return true;
    }
    Result* const remembered = memory_.remember(frame, walk_.mask, variety, walked_);
    if (remembered != nullptr) {
        remembered->firstOther = static_cast<std::uint32_t>(otherTargets_.size());
        otherTargets_.insert(otherTargets_.end(), walkedTargets_.begin(), walkedTargets_.end());
    }
    return true;
}

FileIndexer::Result FileIndexer::resultOf(std::vector<Target>& others) {
    Result result;
    result.protocol = *walk_.protocol;
    result.pduEnd = walk_.pduEnd;
    result.lsduOffset = static_cast<std::uint16_t>(walk_.lsduOffset);
    result.pduOffset = static_cast<std::uint16_t>(walk_.pduOffset);
    result.hasHsr = walk_.header.hsr.has_value();
    result.unread = walk_.unread
                        ? static_cast<std::uint8_t>(static_cast<unsigned>(*walk_.unread) + 1U)
                        : std::uint8_t{0};
    result.hasTarget = !walk_.packets.empty();
    for (WalkedPacket const& packet : walk_.packets) {
        if (&packet == walk_.packets.data()) {
            result.target = targetOf(packet);
        } else {
            others.push_back(targetOf(packet));
        }
    }
    result.otherCount = static_cast<std::uint32_t>(others.size());
    return result;
}

FileIndexer::Target FileIndexer::targetOf(WalkedPacket const& packet) {
    Target target;
    Collected& stream = streamOf(walk_.keyOf(packet));
    if (!stream.isKept) {
        return target;
    }
    target.stream = &stream;
    target.first = packet.first;
    target.second = packet.second;
    target.attributes = numberOf(packet.attributes);
    target.asdu = packet.asdu;
    auto const flag = [&](bool isSet, std::uint16_t bit) {
        target.flags |= isSet ? bit : std::uint16_t{0};
    };
    flag(walk_.isCut, PacketFlags::kCut);
    flag(packet.isDamaged, PacketFlags::kDamaged);
    flag(packet.attributes.simulatedBit, PacketFlags::kSimulated);
    return target;
}

FileIndexer::Collected& FileIndexer::streamOf(StreamKey key) {
    auto const found = byKey_.find(key);
    if (found != byKey_.end()) {
        return *found->second;
    }
    Collected& stream = streams_.emplace_back(key.protocol);
    try {
        stream.key = &byKey_.emplace(std::move(key), &stream).first->first;
    } catch (...) {
        streams_.pop_back();
        throw;
    }
    stream.isKept = !keeps_ || keeps_(*stream.key);
    return stream;
}

std::uint32_t FileIndexer::numberOf(StreamAttributes const& attributes) {
    std::size_t const hash = hashOf(attributes);
    auto& all = file_.attributes;
    auto const [first, last] = byAttributes_.equal_range(hash);
    auto const found = std::find_if(
        first, last, [&](auto const& entry) { return all[entry.second] == attributes; });
    if (found != last) {
        return found->second;
    }
    auto const number = static_cast<std::uint32_t>(all.size());
    all.push_back(attributes);
    byAttributes_.emplace(hash, number);
    return number;
}

void FileIndexer::readOddCounters(Target const& target, Octets frame, PacketRow& row) {
    Collected& stream = *target.stream;
    bool const isGoose = stream.protocol == StreamProtocol::goose;
    auto const packet = static_cast<std::uint32_t>(stream.packets.size() - 1);
    auto const read = [&](CounterPlace const& place, std::uint32_t largest, bool isSecond) {
        auto state = CounterState::absent;
        std::uint32_t value = 0;
        if (place.offset != 0) {
            Octets const octets = frame.subspan(place.offset, place.size);
            auto const number = readUnsigned(octets);
            auto const* const held = std::get_if<std::uint64_t>(&number);
            if (held != nullptr && *held <= largest) {
                state = CounterState::held;
                value = static_cast<std::uint32_t>(*held);
            } else {
                state = CounterState::wide;
                stream.wide.push_back({packet, isSecond, toOwned(octets)});
            }
            bool const hasSign = !octets.empty() && (octets.front() & 0x80U) != 0;
            row.flags |= isGoose && hasSign ? PacketFlags::kNegative : std::uint16_t{0};
        }
        unsigned const shift =
            isSecond ? PacketFlags::kSecondCounterShift : PacketFlags::kFirstCounterShift;
        row.flags = static_cast<std::uint16_t>(row.flags | static_cast<unsigned>(state) << shift);
        return value;
    };
    row.first = read(target.first, kMaxWord, false);
    row.second =
        read(target.second,
             isGoose ? kMaxWord : std::uint32_t{std::numeric_limits<std::uint8_t>::max()}, true);
}

std::vector<TrafficStream> FileIndexer::takeStreams(std::uint32_t number) {
    std::vector<Collected*> sorted;
    for (Collected& stream : streams_) {
        if (stream.isKept) {
            sorted.push_back(&stream);
        }
    }
    std::sort(sorted.begin(), sorted.end(),
              [](Collected const* a, Collected const* b) { return *a->key < *b->key; });
    memory_ = Memory();
    std::vector<TrafficStream> streams;
    streams.reserve(sorted.size());
    for (Collected* const collected : sorted) {
        TrafficStream& stream = streams.emplace_back();
        stream.key = *collected->key;
        StreamPart& part = stream.parts.emplace_back();
        part.file = number;
        part.packets = collected->packets.take(std::exchange(collected->wide, {}));
        part.changes = std::exchange(collected->changes, {});
        part.changes.shrink_to_fit();
    }
    return streams;
}

IndexedFile FileIndexer::takeFile() {
    if (first_ <= last_) {
        file_.summary.first = CaptureTime(std::chrono::nanoseconds(first_));
        file_.summary.last = CaptureTime(std::chrono::nanoseconds(last_));
    }
    return std::move(file_);
}

}  // namespace TalIec61850Analysis::detail
