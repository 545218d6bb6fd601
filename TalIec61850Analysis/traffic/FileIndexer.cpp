#include <TalIec61850Analysis/packet/Integer.hpp>
#include <TalIec61850Analysis/packet/RedundancyFit.hpp>
#include <TalIec61850Analysis/traffic/FileIndexer.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>
#include <variant>

namespace TalIec61850Analysis::detail {

namespace {

namespace wire = TalIec61850Parser::wire;

/// Targets that are kept apart take this many at most.
constexpr std::size_t kMaxOtherTargets = std::size_t{1} << 16U;
constexpr std::uint32_t kMaxWord = std::numeric_limits<std::uint32_t>::max();

/// What tells patterns apart besides the octets.
constexpr std::uint8_t varietyOf(std::uint16_t linkType, bool isSnapped) {
    // The link types that are read differ in these bits.
    return static_cast<std::uint8_t>(unsigned{linkType} << 1U | (isSnapped ? 1U : 0U));
}
static_assert(varietyOf(kLinkTypeEthernet, true) != varietyOf(kLinkTypeCooked2, true) &&
              varietyOf(kLinkTypeCooked, true) != varietyOf(kLinkTypeCooked2, true) &&
              varietyOf(kLinkTypeEthernet, true) != varietyOf(kLinkTypeCooked, true));

/// Whether a frame that starts with this EtherType can be GOOSE or SV.
constexpr bool mayBeRead(std::uint16_t etherType) {
    return etherType == wire::kEtherTypeSv || etherType == wire::kEtherTypeGoose ||
           wire::isVlanTpid(etherType) || etherType == wire::kEtherTypeHsr;
}

/// The four octets from an offset on, as a number.
std::uint32_t readFour(std::uint8_t const* octets) {
    std::uint32_t word = 0;
    std::memcpy(&word, octets, sizeof word);
    if constexpr (std::endian::native == std::endian::little) {
        word = __builtin_bswap32(word);
    }
    return word;
}

}  // namespace

/// Room for a packet, not initialised.
inline PacketRow& FileIndexer::addRow(Target const& target, std::uint64_t frameOffset) const {
    Collected& stream = *target.stream;
    if (stream.attributes != target.attributes) [[unlikely]] {
        stream.changes.push_back(
            {static_cast<std::uint32_t>(stream.packets.size()), target.attributes});
        stream.attributes = target.attributes;
    }
    return stream.packets.add(file_.summary.fileSize, frameOffset);
}

/// Whether columns hold both counters, whatever their octets are.
bool FileIndexer::hasPlainCounters(Target const& target) {
    bool const isGoose = target.stream->protocol == StreamProtocol::goose;
    auto const isPlain = [](CounterPlace const& place, std::size_t most) {
        return place.size != 0 && place.size <= most;
    };
    return isPlain(target.first, sizeof(PacketRow::first)) &&
           isPlain(target.second, isGoose ? sizeof(PacketRow::second) : 1);
}

inline FileIndexer::PlainCounters FileIndexer::plainCounters(Target const& target,
                                                             StreamProtocol protocol,
                                                             Octets frame) {
    auto const maskOf = [](CounterPlace const& place) { return kMaxWord >> (32 - 8 * place.size); };
    auto const read = [&](CounterPlace const& place) {
        // The octets before a counter are there: those of the header at least.
        std::uint8_t const* const end = frame.data() + place.offset + place.size;
        return readFour(end - sizeof(std::uint32_t)) & maskOf(place);
    };
    auto const hasSign = [&](std::uint32_t value, CounterPlace const& place) {
        return value > maskOf(place) >> 1U;
    };
    std::uint32_t const first = read(target.first);
    std::uint32_t const second = read(target.second);
    bool const isNegative = protocol == StreamProtocol::goose &&
                            (hasSign(first, target.first) || hasSign(second, target.second));
    return {first, second, isNegative ? PacketFlags::kNegative : std::uint16_t{0}};
}

inline void FileIndexer::addPacket(Target const& target, PacketRow row, Octets frame) const {
    if (target.stream == nullptr) {
        return;
    }
    row.asdu = target.asdu;
    row.flags |= target.flags;
    bool const isPlain = hasPlainCounters(target);
    if (isPlain) [[likely]] {
        auto const counters = plainCounters(target, target.stream->protocol, frame);
        row.first = counters.first;
        row.second = counters.second;
        row.flags |= counters.flags;
    }
    PacketRow& added = addRow(target, row.frameOffset);
    added = row;
    if (!isPlain) {
        readOddCounters(target, frame, added);
    }
}

namespace {

constexpr std::uint16_t flagsOf(Redundancy redundancy, bool isB) {
    return static_cast<std::uint16_t>(static_cast<unsigned>(redundancy)
                                          << PacketFlags::kRedundancyShift |
                                      (isB ? unsigned{PacketFlags::kLaneB} : 0U));
}

std::int64_t timeOf(CaptureRecord const& record) {
    return record.time ? nanosecondsOf(*record.time) : kNoTime;
}

}  // namespace

/// @pre result.mayHaveTrailer
inline FileIndexer::RedundancyMark FileIndexer::trailerOf(Result const& result, Octets frame) {
    auto const markAt = [](PlacedTrailer const& found) {
        return RedundancyMark{found.trailer.sequence,
                              flagsOf(Redundancy::prp, (found.trailer.lanId & 1U) != 0),
                              found.offset};
    };
    // Mostly at the end. What is found there is used in place, without a copy.
    if (auto const last = prpTrailerBefore(frame, frame.size(), result.lsduOffset, false)) {
        return markAt(*last);
    }
    auto const pduEnd = static_cast<std::size_t>(result.pduEnd);
    auto const found = searchPrpTrailer(frame, pduEnd, result.lsduOffset, false);
    if (found) {
        return markAt(*found);
    }
    auto const misfit = misfitTrailer(frame, pduEnd);
    if (!misfit) {
        return {.tailEnd = frame.size()};
    }
    bool const isB = (misfit->lanId & 1U) != 0;
    return {misfit->sequence,
            static_cast<std::uint16_t>(flagsOf(Redundancy::none, isB) |
                                       unsigned{PacketFlags::kTrailerMisfit}),
            frame.size()};
}

FileIndexer::RedundancyMark FileIndexer::hsrTagOf(Result const& result, RecordView const& view) {
    std::size_t const wireSize = std::max<std::size_t>(view.frame.size(), view.record.originalSize);
    auto const tag = wire::readHsrTag(view.frame.subspan(result.lsduOffset));
    auto const pduEnd = static_cast<std::size_t>(result.pduEnd);
    auto const trailer = findPrpTrailer(view.frame, pduEnd, result.lsduOffset, true);
    RedundancyMark mark{tag.sequence, flagsOf(Redundancy::hsr, tag.letter() == 'B'),
                        trailer ? trailer->offset : view.frame.size()};
    if (!hsrSizeFits(result.lsduOffset, tag.lsduSize, pduEnd, wireSize)) {
        mark.flags |= PacketFlags::kHsrMisfit;
    }
    return mark;
}

FileIndexer::RedundancyMark FileIndexer::markOf(Result const& result, RecordView const& view) {
    if (result.hasHsr) {
        return hsrTagOf(result, view);
    }
    return result.mayHaveTrailer ? trailerOf(result, view.frame)
                                 : RedundancyMark{.tailEnd = view.frame.size()};
}

inline void FileIndexer::countFrame(StreamProtocol protocol) {
    ++(protocol == StreamProtocol::goose ? file_.summary.gooseFrames : file_.summary.svFrames);
}

/// Zeros are padding. Anything else before a PRP trailer, such as a signature, has a meaning that
/// is not known here.
/// @pre result.hasTail, and `tailEnd` is not before the end of the PDU
inline void FileIndexer::countTail(Result const& result, Octets frame, std::size_t tailEnd) {
    auto const start = static_cast<std::size_t>(result.pduEnd);
    Octets const tail = frame.subspan(start, tailEnd - start);
    bool const isPadding = std::all_of(tail.begin(), tail.end(), [](auto octet) { return !octet; });
    file_.summary.unknownTrailers += isPadding ? 0 : 1;
}

/// Adds a usual frame. All of its row is written at once, and nothing of it is read: with many
/// streams, that would wait for memory.
inline void FileIndexer::addUsual(Result const& result, RecordView const& view) {
    countFrame(result.protocol);
    Target const& target = result.target;
    auto const counters = plainCounters(target, result.protocol, view.frame);
    auto const mark = result.mayHaveTrailer ? trailerOf(result, view.frame)
                                            : RedundancyMark{.tailEnd = view.frame.size()};
    if (result.hasTail) [[unlikely]] {
        countTail(result, view.frame, mark.tailEnd);
    }
    addRow(target, view.record.frameOffset) = {
        .time = timeOf(view.record),
        .frameOffset = view.record.frameOffset,
        .first = counters.first,
        .second = counters.second,
        .pduOffset = result.pduOffset,
        .sequence = mark.sequence,
        .flags = static_cast<std::uint16_t>(target.flags | counters.flags | mark.flags),
        .asdu = target.asdu};
}

[[gnu::noinline]] void FileIndexer::addFrame(Result const& result, Target const* others,
                                             RecordView const& view) {
    CaptureRecord const& record = view.record;
    countFrame(result.protocol);
    if (result.unread) [[unlikely]] {
        file_.summary.unread.push_back({.frameOffset = record.frameOffset,
                                        .time = record.time,
                                        .protocol = result.protocol,
                                        .reason = *result.unread});
    }
    auto const mark = markOf(result, view);
    if (result.hasTail) {
        countTail(result, view.frame, mark.tailEnd);
    }
    if (!result.hasTarget) {
        return;
    }
    PacketRow row{};
    row.time = timeOf(record);
    row.frameOffset = record.frameOffset;
    row.pduOffset = result.pduOffset;
    row.sequence = mark.sequence;
    row.flags = mark.flags;
    addPacket(result.target, row, view.frame);
    for (std::uint32_t i = 0; i < result.otherCount; ++i) {
        addPacket(others[i], row, view.frame);
    }
}

void FileIndexer::add(RecordView const& view) {
    CaptureRecord const& record = view.record;
    LinkKind const& link = counter_.countRecord(record);
    if (!link.isReadable) {
        return;
    }
    Octets const frame = view.frame;
    if (frame.size() < link.headerSize) {
        counter_.countOther(0, {});
        return;
    }
    std::uint16_t const etherType = wire::readUint16(frame, link.etherTypeOffset);
    if (!mayBeRead(etherType)) {
        counter_.countOther(etherType, frame.subspan(link.headerSize));
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
    if (result->isUsual) [[likely]] {
        addUsual(*result, view);
    } else {
        addFrame(*result, others->data() + result->firstOther, view);
    }
    if (Result const* const next = memory_.nextInTurn()) {
        // Of many streams, few are in a near cache.
        __builtin_prefetch(next->target.stream, 1);
    }
}

/// @return whether `walked_` and `walkedTargets_` are what the frame is
[[gnu::noinline]] bool FileIndexer::walk(RecordView const& view, std::uint8_t variety) {
    Octets const frame = view.frame;
    walkFrame(frame, {.linkType = view.record.linkType, .originalSize = view.record.originalSize},
              walk_);
    if (!walk_.protocol) {
        counter_.countOther(walk_.header.etherType.value_or(0), frame.subspan(walk_.header.size));
        return false;
    }
    walkedTargets_.clear();
    walked_ = resultOf(view, walkedTargets_);
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

FileIndexer::Result FileIndexer::resultOf(RecordView const& view, std::vector<Target>& others) {
    Result result;
    result.protocol = *walk_.protocol;
    result.pduEnd = walk_.pduEnd;
    result.lsduOffset = static_cast<std::uint16_t>(walk_.lsduOffset);
    result.pduOffset = static_cast<std::uint16_t>(walk_.pduOffset);
    result.hasHsr = walk_.header.hsr.has_value();
    result.unread = walk_.unread;
    result.hasTarget = !walk_.packets.empty();
    for (WalkedPacket const& packet : walk_.packets) {
        if (&packet == walk_.packets.data()) {
            result.target = targetOf(packet);
        } else {
            others.push_back(targetOf(packet));
        }
    }
    result.otherCount = static_cast<std::uint32_t>(others.size());
    // All of it is the same for each frame of the pattern.
    std::size_t const size = view.frame.size();
    result.mayHaveTrailer = !result.hasHsr && view.record.originalSize <= size &&
                            walk_.pduEnd + wire::kPrpTrailerSize <= size;
    bool const hasPdu = walk_.pduEnd > walk_.header.size;
    result.hasTail = hasPdu && view.record.originalSize <= size && walk_.pduEnd < size;
    result.isUsual = !result.hasHsr && !result.unread && result.otherCount == 0 &&
                     result.target.stream != nullptr && hasPlainCounters(result.target);
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
    target.attributes = attributes_.numberOf(packet.attributes);
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

void FileIndexer::readOddCounters(Target const& target, Octets frame, PacketRow& row) {
    Collected& stream = *target.stream;
    bool const isGoose = stream.protocol == StreamProtocol::goose;
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
                stream.packets.addWide(isSecond, octets);
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
        part.packets = collected->packets.take();
        part.changes = std::exchange(collected->changes, {});
        part.changes.shrink_to_fit();
    }
    return streams;
}

IndexedFile FileIndexer::takeFile() {
    counter_.finish();
    file_.attributes = attributes_.take();
    return std::move(file_);
}

}  // namespace TalIec61850Analysis::detail
