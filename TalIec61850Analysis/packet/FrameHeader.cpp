#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/LinkStart.hpp>
#include <TalIec61850Analysis/packet/RedundancyFit.hpp>
#include <TalIec61850Parser/wire/ApplicationHeader.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <algorithm>

namespace TalIec61850Analysis {

namespace {

namespace wire = TalIec61850Parser::wire;
using wire::ApplicationHeader;

/// Reads a frame front to back; `size` of the header is how far.
class HeaderReader {
public:
    HeaderReader(Octets frame, FrameHeader& header) : frame_(frame), header_(header) {}

    void read(std::uint16_t linkType) {
        if (!isReadable(linkType)) {
            return;
        }
        if (auto const* const layout = cookedLayoutOf(linkType)) {
            takeCooked(*layout);
        } else {
            takeAddress(header_.destination);
            takeAddress(header_.source);
            takeEtherType();
        }
        while (header_.etherType && wire::isVlanTpid(*header_.etherType) &&
               header_.vlanTags.size() < kMaxVlanTags) {
            takeVlan(*header_.etherType);
        }
        if (header_.etherType == wire::kEtherTypeHsr) {
            takeHsr();
        }
        if (header_.isGoose() || header_.isSv()) {
            takeApplicationHeader();
        }
    }

private:
    /// The next octets; none where the frame does not have as many, whose rest is then passed over.
    Octets take(std::size_t count) {
        Octets const rest = frame_.subspan(header_.size);
        header_.size += std::min(count, rest.size());
        return rest.size() < count ? Octets() : rest.first(count);
    }

    void takeAddress(std::optional<MacAddress>& address) {
        if (Octets const octets = take(wire::kMacSize); !octets.empty()) {
            std::copy(octets.begin(), octets.end(), address.emplace().begin());
        }
    }

    void takeEtherType() {
        Octets const octets = take(wire::kEtherTypeSize);
        header_.etherType.reset();
        if (!octets.empty()) {
            header_.etherType = wire::readUint16(octets, 0);
        }
    }

    /// The source is set where the address has the size of one.
    void takeCooked(wire::CookedLayout const& layout) {
        Octets const octets = take(layout.size);
        if (octets.empty()) {
            return;
        }
        auto const size = wire::readBigEndian<std::uint16_t>(
            octets.subspan(layout.addressSizeOffset, layout.addressSizeWidth));
        if (size == wire::kMacSize) {
            Octets const address = octets.subspan(layout.addressOffset, wire::kMacSize);
            std::copy(address.begin(), address.end(), header_.source.emplace().begin());
        }
        header_.etherType = wire::readUint16(octets, layout.protocolOffset);
    }

    void takeVlan(std::uint16_t tpid) {
        if (Octets const octets = take(wire::kVlanTagSize); !octets.empty()) {
            auto const tag = wire::toVlanTag(wire::readUint16(octets, 0));
            header_.vlanTags.add(
                {.tpid = tpid, .priority = tag.priority, .dei = tag.dei, .id = tag.id});
        }
        takeEtherType();
    }

    void takeHsr() {
        if (Octets const octets = take(wire::kHsrTagSize); !octets.empty()) {
            auto const tag = wire::readHsrTag(octets);
            header_.hsr = {.path = tag.path, .lsduSize = tag.lsduSize, .sequence = tag.sequence};
        }
        takeEtherType();
    }

    void takeApplicationHeader() {
        Octets const rest = frame_.subspan(header_.size);
        auto const word = [&](std::size_t index) {
            return index + 2 <= rest.size() ? std::optional(wire::readUint16(rest, index))
                                            : std::nullopt;
        };
        header_.appId = word(ApplicationHeader::kAppIdOffset);
        header_.length = word(ApplicationHeader::kLengthOffset);
        header_.reserved1 = word(ApplicationHeader::kReserved1Offset);
        header_.reserved2 = word(ApplicationHeader::kReserved2Offset);
        header_.size += std::min(ApplicationHeader::kSize, rest.size());
    }

    Octets frame_;
    FrameHeader& header_;
};

char letterOf(std::uint8_t path) { return wire::RedundancyTag{.path = path}.letter(); }

}  // namespace

static_assert(std::tuple_size_v<MacAddress> == wire::kMacSize);

char HsrTag::lane() const noexcept { return letterOf(path); }

char PrpTrailer::lan() const noexcept { return letterOf(lanId); }

bool FrameHeader::isGoose() const noexcept { return etherType == wire::kEtherTypeGoose; }

bool FrameHeader::isSv() const noexcept { return etherType == wire::kEtherTypeSv; }

bool FrameHeader::simulated() const noexcept {
    return (reserved1.value_or(0) & ApplicationHeader::kSimulationBit) != 0;
}

FrameHeader readFrameHeader(Octets frame, FrameOrigin const& origin) noexcept {
    FrameHeader header = readFrameStart(frame, origin.linkType);
    if (auto const found = findPrpTrailer(frame, pduEndOf(frame, header), header, origin)) {
        header.prp = found->trailer;
    }
    return header;
}

FrameHeader readFrameStart(Octets frame, std::uint16_t linkType) noexcept {
    FrameHeader header;
    HeaderReader(frame, header).read(linkType);
    return header;
}

}  // namespace TalIec61850Analysis
