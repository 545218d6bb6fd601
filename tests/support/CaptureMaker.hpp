#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/StationDevice.hpp"

namespace TalTest {

/// One GOOSE or SV packet as an index must list it.
struct MadePacket {
    /// The members that tell streams apart, as streamText() writes them.
    std::string stream = {};
    /// Offset in the file of the goosePdu, or of the sequence of ASDU. Without such an element, or
    /// where it runs past the captured octets, 0, and the time is 0 too.
    std::uint64_t position = 0;
    std::uint32_t seconds = 0;
    std::uint32_t nanoseconds = 0;

    auto operator<=>(MadePacket const&) const = default;
};

/// A capture, and what an index of it must hold by how it was made.
struct MadeCapture {
    Bytes octets = {};
    std::vector<MadePacket> packets = {};

    [[nodiscard]] std::size_t gooseFrames() const;
    [[nodiscard]] std::size_t svFrames() const;
    [[nodiscard]] std::size_t streams() const;
    [[nodiscard]] std::size_t withoutPosition() const;
};

/// What tells GOOSE streams apart: addresses, VLAN id (none is 0), APPID, the lowest bit of
/// Reserved 1, gocbRef, datSet, goID (none is empty), whether there is a simulation element, and
/// the first four octets of confRev (none is 0). HSR and PRP tell no GOOSE streams apart.
[[nodiscard]] std::string streamText(Ethernet const& ethernet, GooseMessage const& message);

/// What tells SV streams apart: addresses, VLAN id (none is 0), the way round the HSR ring, APPID,
/// the lowest bit of Reserved 1, and the last svID and confRev of all ASDUs.
[[nodiscard]] std::string streamText(Ethernet const& ethernet, SvMessage const& message);

/// The same of a stream of the station.
[[nodiscard]] std::string streamText(StationStream const& stream);

/// Builds a capture frame by frame, and writes down which packets an index must list. It works on
/// messages before they are encoded, and reads no frame.
class CaptureMaker {
public:
    explicit CaptureMaker(CaptureVariant variant = CaptureVariant::microLittle,
                          std::uint32_t linkType = linkTypeEthernet);

    /// When the next frame is captured, in nanoseconds after stationStart. By default 250 us after
    /// the frame before.
    CaptureMaker& at(std::uint64_t time);

    /// How many octets are captured of each frame from here on.
    CaptureMaker& snapTo(std::size_t octets);

    /// A frame that carries neither GOOSE nor SV.
    CaptureMaker& addOther(Bytes const& frame);

    CaptureMaker& add(Ethernet const& ethernet, GooseMessage const& message);
    CaptureMaker& add(Ethernet const& ethernet, SvMessage const& message);

    /// A packet that an index lists otherwise than its message says.
    /// @param stream  a streamText()
    /// @param index   of the element in the frame that its position is that of
    CaptureMaker& add(std::string const& stream, std::optional<std::size_t> index,
                      Bytes const& frame);

    /// The next frames of all devices, in the order of their times.
    CaptureMaker& addFrom(StationDevices& devices, std::size_t frames);

    /// The capture without its last octets, which an index takes for zeros: the last record is cut.
    [[nodiscard]] MadeCapture make(std::size_t octetsCut = 0) const;

private:
    void addRecord(Bytes const& frame);

    CaptureBuilder builder_;
    bool isNanosecond_;
    std::uint64_t time_ = 0;
    std::optional<std::size_t> snapLength_ = {};
    std::vector<MadePacket> packets_ = {};
};

}  // namespace TalTest
