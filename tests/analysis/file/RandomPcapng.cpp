#include "analysis/file/RandomPcapng.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <ostream>

#include "analysis/file/EveryBlock.hpp"
#include "index/RandomPicks.hpp"
#include "support/PcapngMaker.hpp"

namespace TalIec61850Analysis {
namespace {

using TalTest::below;
using TalTest::Bytes;
using TalTest::concat;
using TalTest::oneIn;
using TalTest::oneOf;
using TalTest::PcapngMaker;

constexpr std::uint8_t kBinary = 0x80;
/// The last second whose nanoseconds all fit into 63 bits.
constexpr std::uint64_t kLastSecond = 9'223'372'035;

/// A number below `bound`, which is not 0.
std::uint64_t belowWide(std::uint64_t bound) {
    return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange<std::uint64_t>(0, bound));
}

/// How an interface counts time: in units that libpcap reads rightly.
struct Clock {
    std::optional<std::uint8_t> resolution;
    std::int64_t offset = 0;

    [[nodiscard]] std::uint64_t unitsPerSecond() const {
        std::uint8_t const octet = resolution.value_or(6);
        if ((octet & kBinary) != 0) {
            return std::uint64_t{1} << (octet & 0x7FU);
        }
        std::uint64_t units = 1;
        for (unsigned i = 0; i < octet; ++i) {
            units *= 10;
        }
        return units;
    }

    /// The first and the last second since 1970 that can be told, also as nanoseconds.
    [[nodiscard]] std::int64_t first() const { return std::max<std::int64_t>(offset, 0); }
    [[nodiscard]] std::int64_t last() const {
        std::uint64_t const counted = ~std::uint64_t{0} / unitsPerSecond() - 1;
        auto const seconds = static_cast<std::int64_t>(std::min(counted, kLastSecond));
        return std::min(seconds + offset, static_cast<std::int64_t>(kLastSecond));
    }
};

Clock anyClock() {
    // Up to where binary fractions are counted in so many bits that libpcap overflows.
    Clock clock{.resolution = static_cast<std::uint8_t>(oneIn(2) ? kBinary | below(35) : below(20)),
                .offset = oneOf(std::array<std::int64_t, 4>{0, 3600, 1'700'000'000, -1000})};
    if (oneIn(4)) {
        clock.resolution.reset();
    }
    // Picoseconds and finer units have too few seconds for it.
    if (clock.last() < clock.first()) {
        clock.offset = 0;
    }
    return clock;
}

std::uint64_t anyTime(Clock const& clock) {
    auto const seconds = static_cast<std::uint64_t>(clock.first() - clock.offset) +
                         belowWide(static_cast<std::uint64_t>(clock.last() - clock.first()) + 1);
    return seconds * clock.unitsPerSecond() + belowWide(clock.unitsPerSecond());
}

Bytes anyInterfaceOptions(PcapngMaker const& maker, Clock const& clock) {
    Bytes options;
    if (oneIn(3)) {
        TalTest::append(options, maker.option(2, TalTest::anyOctets(20)));
    }
    if (clock.resolution) {
        TalTest::append(options, maker.option(9, {*clock.resolution}));
    }
    if (oneIn(3)) {
        TalTest::append(options, maker.option(13, {TalTest::anyOctet()}));
    }
    if (clock.offset != 0) {
        TalTest::append(options, maker.numberOption(14, static_cast<std::uint64_t>(clock.offset)));
    }
    return oneIn(2) ? concat({options, PcapngMaker::endOfOptions()}) : options;
}

/// Makes one.
class RandomMaker {
public:
    [[nodiscard]] RandomPcapng make() {
        startSection();
        for (unsigned left = below(60); left > 0; --left) {
            addBlock();
        }
        return {maker_.bytes(), simplePackets_};
    }

private:
    void startSection() {
        maker_.section(isLittleEndian_);
        clocks_.clear();
        addInterface();
    }

    void addInterface() {
        clocks_.push_back(anyClock());
        maker_.interface(linkType_, snapLength_, anyInterfaceOptions(maker_, clocks_.back()));
    }

    void addBlock() {
        unsigned const kind = below(20);
        if (kind == 19) {
            startSection();
        } else if (kind == 18) {
            addInterface();
        } else if (kind == 17) {
            addOtherBlocks(maker_);
        } else if (kind >= 15) {
            addSimplePacket();
        } else {
            addPacketWithTime(kind >= 10);
        }
    }

    /// Not longer than the snap length, and not of CAN, which libpcap changes.
    [[nodiscard]] Bytes anyFrame() const {
        Bytes frame = TalTest::anyOctets(snapLength_ == 0 ? 200 : std::min(snapLength_ + 1, 200U));
        if (linkType_ == kCooked && frame.size() > kCookedProtocol) {
            frame[kCookedProtocol] |= 1U;
        }
        return frame;
    }

    void addSimplePacket() {
        Bytes frame = anyFrame();
        std::optional<std::uint32_t> original;
        if (snapLength_ == kShort && oneIn(2)) {
            frame.resize(kShort, 1);
            original = kShort + below(2000);
        }
        simplePackets_.push_back({packets_++, clocks_.front().offset});
        maker_.simplePacket(frame, original);
    }

    void addPacketWithTime(bool isOld) {
        std::uint32_t const interface = below(static_cast<unsigned>(clocks_.size()));
        PcapngMaker::Packet packet{.interface = interface,
                                   .time = anyTime(clocks_[interface]),
                                   .frame = anyFrame(),
                                   .dropped = static_cast<std::uint16_t>(below(0x10000)),
                                   .options = oneIn(4) ? allPacketOptions(maker_) : Bytes()};
        if (oneIn(3)) {
            packet.originalSize = below(100'000);
        }
        ++packets_;
        if (isOld) {
            maker_.oldPacket(packet);
        } else {
            maker_.packet(packet);
        }
    }

    static constexpr std::uint32_t kShort = 60;
    static constexpr std::uint16_t kCooked = 113;
    /// Where the first octet of the EtherType is in a cooked frame.
    static constexpr std::size_t kCookedProtocol = 14;

    bool isLittleEndian_ = oneIn(2);
    std::uint16_t linkType_ = oneIn(3) ? kCooked : 1;
    std::uint32_t snapLength_ = oneOf(std::array<std::uint32_t, 4>{0, kShort, 65'535, 262'144});
    PcapngMaker maker_;
    std::vector<Clock> clocks_;
    std::size_t packets_ = 0;
    std::vector<RandomPcapng::SimplePacket> simplePackets_;
};

}  // namespace

rc::Gen<RandomPcapng> anyPcapng() {
    return rc::gen::exec([] { return RandomMaker().make(); });
}

void showValue(RandomPcapng const& capture, std::ostream& out) {
    out << "simple packets";
    for (auto const& [index, zero] : capture.simplePackets) {
        out << ' ' << index << " at " << zero << ',';
    }
    out << " in ";
    rc::show(capture.octets, out);
}

}  // namespace TalIec61850Analysis
