#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <TalIec61850Analysis/packet/SvView.hpp>
#include <TalIec61850Scl/match/AsduWatch.hpp>
#include <TalIec61850Scl/match/CompareFrames.hpp>
#include <TalIec61850Scl/match/FileCourse.hpp>
#include <TalIec61850Scl/match/MemberWatch.hpp>
#include <algorithm>
#include <cerrno>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

namespace TalIec61850Scl::detail {

namespace {

using TalIec61850Analysis::AsduView;
using TalIec61850Analysis::CaptureFile;
using TalIec61850Analysis::FrameHeader;
using TalIec61850Analysis::FrameOrigin;
using TalIec61850Analysis::GooseView;
using TalIec61850Analysis::PacketColumns;
using TalIec61850Analysis::PacketRef;
using TalIec61850Analysis::RecordView;
using TalIec61850Analysis::StreamProtocol;
using TalIec61850Analysis::SvView;

[[noreturn]] void throwStale() { throw std::system_error(ESTALE, std::generic_category()); }

/// Whether there is a priority to compare with.
bool hasPriority(DescribedStream const& described) {
    return described.block.address.vlanPriority && !described.stream.key.vlans.empty();
}

/// What is compared of the packets of a part.
class PartWatch {
public:
    explicit PartWatch(ComparedPart& part) : part_(part), described_(*part.described) {
        if (described_.isGoose()) {
            if (described_.dataSet != nullptr) {
                members_.emplace(*described_.dataSet);
            }
        } else {
            asdus_.emplace(described_.block.options, described_.dataSet);
        }
    }

    [[nodiscard]] PacketColumns const& packets() const {
        return described_.stream.parts[part_.part].packets;
    }

    void look(GooseView const& view, std::uint32_t packet) {
        comparePriority(view.header, packet);
        if (members_) {
            members_->look(view.allData, isCut(packet), refOf(packet), part_.differences);
        }
    }

    void look(FrameHeader const& header, AsduView const& asdu, std::uint32_t packet) {
        comparePriority(header, packet);
        asdus_->look(asdu, isCut(packet), refOf(packet), part_.differences);
    }

    /// Whether nothing more can be found.
    [[nodiscard]] bool isDone() const {
        bool const isMembersDone =
            described_.isGoose()
                ? !members_ || (has(DifferenceKind::memberCount) && has(DifferenceKind::memberType))
                : !asdus_->comparesSize() || has(DifferenceKind::memberCount);
        bool const areOptionsDone =
            described_.isGoose() || !described_.block.options || has(DifferenceKind::options);
        bool const isPriorityDone = !hasPriority(described_) || has(DifferenceKind::vlanPriority);
        return isMembersDone && areOptionsDone && isPriorityDone;
    }

private:
    void comparePriority(FrameHeader const& header, std::uint32_t packet) {
        auto const& expected = described_.block.address.vlanPriority;
        auto const tag = header.vlanTags.innermost();
        if (expected && tag && tag->priority != *expected) {
            part_.differences.add({.kind = DifferenceKind::vlanPriority,
                                   .expected = std::int64_t{*expected},
                                   .found = std::int64_t{tag->priority},
                                   .member = {},
                                   .packet = refOf(packet)});
        }
    }

    [[nodiscard]] bool has(DifferenceKind kind) const { return part_.differences.has(kind); }
    [[nodiscard]] bool isCut(std::uint32_t packet) const {
        return packets().flags()[packet].isCut();
    }
    [[nodiscard]] PacketRef refOf(std::uint32_t packet) const {
        return {.part = part_.part, .packet = packet};
    }

    ComparedPart& part_;
    DescribedStream const& described_;
    /// Of GOOSE with a data set.
    std::optional<MemberWatch> members_;
    /// Of SV.
    std::optional<AsduWatch> asdus_;
};

/// The frames of a file that hold packets, each read once.
class PacketFrameReader {
public:
    explicit PacketFrameReader(std::string const& path) : file_(path) {}

    /// Goes on to the frame of a packet, which is not before the one gone to last.
    void goTo(FilePacket const& packet, PacketColumns const& packets) {
        if (record_ != nullptr && record_->record.frameOffset == packet.frameOffset) {
            return;
        }
        do {
            record_ = file_.next();
        } while (record_ != nullptr && record_->record.frameOffset < packet.frameOffset);
        if (record_ == nullptr || record_->record.frameOffset != packet.frameOffset) {
            throwStale();
        }
        std::size_t const pduOffset = packets.pduOffsets()[packet.packet];
        FrameOrigin const origin{.linkType = record_->record.linkType,
                                 .originalSize = record_->record.originalSize};
        if (packets.protocol() == StreamProtocol::goose) {
            goose_ = viewGoose(record_->frame, pduOffset, origin);
        } else {
            sv_ = viewSv(record_->frame, pduOffset, origin);
            asdu_ = sv_.asdus.begin();
            asduNumber_ = 0;
        }
    }

    [[nodiscard]] GooseView const& goose() const {
        if (!goose_.pdu) {
            throwStale();
        }
        return goose_;
    }

    [[nodiscard]] FrameHeader const& svHeader() const { return sv_.header; }

    /// @param number  of an ASDU, not before the one asked for last in this frame
    [[nodiscard]] AsduView asdu(std::uint16_t number) {
        while (asdu_ != std::default_sentinel && asduNumber_ < number) {
            ++asdu_;
            ++asduNumber_;
        }
        if (asdu_ == std::default_sentinel) {
            throwStale();
        }
        return *asdu_;
    }

private:
    CaptureFile file_;
    RecordView const* record_ = nullptr;
    /// Of the frame, by its protocol.
    GooseView goose_;
    SvView sv_;
    TalIec61850Analysis::AsduViews::Iterator asdu_;
    std::uint32_t asduNumber_ = 0;
};

}  // namespace

bool needsFrames(DescribedStream const& described) {
    bool const hasOptions = !described.isGoose() && described.block.options.has_value();
    return described.dataSet != nullptr || hasOptions || hasPriority(described);
}

void compareFrames(std::uint32_t file, std::vector<ComparedPart>& parts) {
    if (parts.empty()) {
        return;
    }
    std::vector<std::unique_ptr<PartWatch>> watches;
    std::vector<PacketColumns const*> columns;
    for (ComparedPart& part : parts) {
        watches.push_back(std::make_unique<PartWatch>(part));
        columns.push_back(&watches.back()->packets());
    }
    PacketFrameReader frames(parts.front().described->index.files()[file].summary.path);
    FileCourse course(columns);
    while (auto const packet = course.next()) {
        PartWatch& watch = *watches[packet->columns];
        if (watch.isDone()) {
            course.leave(packet->columns);
            continue;
        }
        frames.goTo(*packet, watch.packets());
        if (watch.packets().protocol() == StreamProtocol::goose) {
            watch.look(frames.goose(), packet->packet);
        } else {
            watch.look(frames.svHeader(), frames.asdu(packet->asdu), packet->packet);
        }
    }
}

}  // namespace TalIec61850Scl::detail
