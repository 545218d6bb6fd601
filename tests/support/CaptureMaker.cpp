#include "support/CaptureMaker.hpp"

#include <algorithm>
#include <memory>
#include <set>
#include <sstream>

namespace TalTest {
namespace {

constexpr std::size_t kApduHeaderSize = 8;
constexpr std::string_view kGoosePrefix = "goose";

/// What both protocols have in common.
template <typename Message>
std::string linkText(Ethernet const& ethernet, Message const& message) {
    std::ostringstream out;
    out << ethernet.source << ' ' << ethernet.destination << " vlan " << ethernet.vlanId.value_or(0)
        << " appId " << message.appId << " bit " << (message.reserved1 & 1U);
    return out.str();
}

/// Of a number in more than four octets the first four.
std::uint64_t firstFourOctets(MinimalUnsigned const& number) {
    Bytes const octets =
        number.octets == 0 ? minimalUnsigned(number.value) : bigEndian(number.value, number.octets);
    std::uint64_t value = 0;
    for (std::uint8_t const octet : prefix(octets, 4)) value = value << 8U | octet;
    return value;
}

std::size_t count(std::vector<MadePacket> const& packets, bool isGoose) {
    return static_cast<std::size_t>(
        std::count_if(packets.begin(), packets.end(), [isGoose](MadePacket const& packet) {
            return packet.stream.starts_with(kGoosePrefix) == isGoose;
        }));
}

}  // namespace

std::size_t MadeCapture::gooseFrames() const { return count(packets, true); }
std::size_t MadeCapture::svFrames() const { return count(packets, false); }

std::size_t MadeCapture::streams() const {
    std::set<std::string> texts;
    for (MadePacket const& packet : packets) texts.insert(packet.stream);
    return texts.size();
}

std::size_t MadeCapture::withoutPosition() const {
    return static_cast<std::size_t>(
        std::count_if(packets.begin(), packets.end(),
                      [](MadePacket const& packet) { return packet.position == 0; }));
}

std::string streamText(Ethernet const& ethernet, GooseMessage const& message) {
    std::ostringstream out;
    out << kGoosePrefix << ' ' << linkText(ethernet, message) << " gocbRef "
        << message.gocbRef.value_or("") << " datSet " << message.datSet.value_or("") << " goID "
        << message.goID.value_or("") << " simulation " << message.simulation.has_value()
        << " confRev " << (message.confRev ? firstFourOctets(*message.confRev) : 0);
    return out.str();
}

std::string streamText(Ethernet const& ethernet, SvMessage const& message) {
    std::string svID;
    std::uint64_t confRev = 0;
    for (Asdu const& asdu : message.asdus) {
        if (asdu.svID) svID = *asdu.svID;
        if (asdu.confRev) confRev = asdu.confRev->value;
    }
    std::ostringstream out;
    out << "sv " << linkText(ethernet, message) << " hsr " << ethernet.hsrLan.value_or('-')
        << " svID " << svID << " confRev " << confRev;
    return out.str();
}

std::string streamText(StationStream const& stream) {
    Ethernet ethernet = Ethernet().to(stream.destination).from(stream.source);
    ethernet.vlanId = stream.vlanId;
    ethernet.hsrLan = stream.hsrLan;
    if (stream.protocol == StationStream::Protocol::goose) {
        GooseMessage message;
        message.appId = stream.appId;
        message.gocbRef = stream.id;
        message.datSet = stream.datSet;
        message.goID = stream.goID;
        message.confRev = stream.confRev;
        return streamText(ethernet, message);
    }
    SvMessage message;
    message.appId = stream.appId;
    message.asdus.front().svID = stream.id;
    message.asdus.front().confRev = stream.confRev;
    return streamText(ethernet, message);
}

CaptureMaker::CaptureMaker(CaptureVariant variant, std::uint32_t linkType)
    : builder_(variant, linkType), isNanosecond_(isNanosecond(variant)) {}

CaptureMaker& CaptureMaker::at(std::uint64_t time) {
    time_ = time;
    return *this;
}

CaptureMaker& CaptureMaker::snapTo(std::size_t octets) {
    snapLength_ = octets;
    return *this;
}

CaptureMaker& CaptureMaker::addOther(Bytes const& frame) {
    addRecord(frame);
    return *this;
}

CaptureMaker& CaptureMaker::add(Ethernet const& ethernet, GooseMessage const& message) {
    return add(streamText(ethernet, message), payloadOffset(ethernet) + kApduHeaderSize,
               gooseFrame(ethernet, message));
}

CaptureMaker& CaptureMaker::add(Ethernet const& ethernet, SvMessage const& message) {
    return add(streamText(ethernet, message),
               payloadOffset(ethernet) + kApduHeaderSize + sequenceOffset(message),
               svFrame(ethernet, message));
}

CaptureMaker& CaptureMaker::add(std::string const& stream, std::optional<std::size_t> index,
                                Bytes const& frame) {
    MadePacket packet{.stream = stream};
    if (index) {
        constexpr std::uint32_t perMicrosecond = 1000;
        auto const fraction = static_cast<std::uint32_t>(time_ % second);
        packet.position = builder_.nextRecordPosition() + recordHeaderSize + *index;
        packet.seconds = stationStart + static_cast<std::uint32_t>(time_ / second);
        packet.nanoseconds = isNanosecond_ ? fraction : fraction - fraction % perMicrosecond;
    }
    packets_.push_back(packet);
    addRecord(frame);
    return *this;
}

CaptureMaker& CaptureMaker::addFrom(StationDevices& devices, std::size_t frames) {
    for (std::size_t frame = 0; frame < frames; ++frame) {
        StationDevice& next = **std::min_element(
            devices.begin(), devices.end(),
            [](auto const& a, auto const& b) { return a->nextTime() < b->nextTime(); });
        at(next.nextTime());
        if (!next.stream()) {
            addOther(next.send());
            continue;
        }
        // Its element is where the tags and headers end, which are the same in all of its frames.
        StationStream const stream = *next.stream();
        Bytes const octets = next.send();
        std::uint8_t const tag = stream.protocol == StationStream::Protocol::goose ? 0x61 : 0xA2;
        Ethernet ethernet;
        ethernet.vlanId = stream.vlanId;
        ethernet.hsrLan = stream.hsrLan;
        auto const start = static_cast<std::ptrdiff_t>(payloadOffset(ethernet) + kApduHeaderSize);
        auto const element = std::find(octets.begin() + start, octets.end(), tag);
        add(streamText(stream), static_cast<std::size_t>(element - octets.begin()), octets);
    }
    return *this;
}

MadeCapture CaptureMaker::make(std::size_t octetsCut) const {
    return {prefix(builder_.bytes(), builder_.bytes().size() - octetsCut), packets_};
}

void CaptureMaker::addRecord(Bytes const& frame) {
    auto const seconds = stationStart + static_cast<std::uint32_t>(time_ / second);
    auto const nanoseconds = static_cast<std::uint32_t>(time_ % second);
    if (snapLength_) {
        builder_.addSnapped(seconds, nanoseconds, static_cast<std::uint32_t>(*snapLength_), frame);
    } else {
        builder_.add(seconds, nanoseconds, frame);
    }
    time_ += stationGrid;
}

}  // namespace TalTest
