#include "index/PlainIndex.hpp"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>

#include "index/PlainWalk.hpp"

namespace TalTest {
namespace {

using TalIec61850::GooseIdentifer;
using TalIec61850::SvIdentifer;
using TalIec61850::VlanInfo;
using TalIec61850Parser::Filter;

constexpr std::size_t fileHeaderSize = 24;
constexpr std::size_t recordHeaderSize = 16;
constexpr std::size_t maxPadding = std::size_t{16} << 20U;

/// The octets from `at` on, with zeros for what is after the end.
Bytes filledSlice(Bytes const& octets, std::size_t at, std::size_t size) {
    std::size_t const first = std::min(at, octets.size());
    std::size_t const present = std::min(size, octets.size() - first);
    Bytes part(octets.begin() + static_cast<std::ptrdiff_t>(first),
               octets.begin() + static_cast<std::ptrdiff_t>(first + present));
    part.resize(present + std::min(size - present, maxPadding));
    return part;
}

struct Variant {
    Bytes magic;
    bool nanoseconds;
    bool littleEndian;
};

Variant const* variantOf(Bytes const& capture) {
    static std::vector<Variant> const variants = {{{0xD4, 0xC3, 0xB2, 0xA1}, false, true},
                                                  {{0xA1, 0xB2, 0xC3, 0xD4}, false, false},
                                                  {{0x4D, 0x3C, 0xB2, 0xA1}, true, true},
                                                  {{0xA1, 0xB2, 0x3C, 0x4D}, true, false}};
    Bytes magic = filledSlice(capture, 0, 4);
    if (magic == Bytes{0x0A, 0x0D, 0x0D, 0x0A}) magic = filledSlice(capture, 8, 4);
    for (Variant const& variant : variants)
        if (variant.magic == magic) return &variant;
    return nullptr;
}

std::uint32_t fourOctets(Bytes const& octets, std::size_t at, bool littleEndian) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number = number * 256U + octets.at(littleEndian ? at + 3 - i : at + i);
    return number;
}

// --- Which records are one stream --------------------------------------------------------------

std::string payload(std::optional<std::string> const& text) { return text ? *text : ""; }

template <typename T>
std::uint64_t payload(std::optional<T> const& number) {
    return number ? static_cast<std::uint64_t>(*number) : 0;
}

std::size_t hashOf(std::optional<std::string> const& text) {
    return text ? std::hash<std::string>()(*text) : 0;
}

std::size_t hashOf(std::optional<VlanInfo> const& vlan) {
    if (!vlan) return 0;
    return payload(vlan->priority) ^ payload(vlan->dei) ^ payload(vlan->vlanId);
}

std::size_t hashOf(GooseIdentifer const& id) {
    return hashOf(id.srcMac) ^ hashOf(id.dstMac) ^ hashOf(id.vlan) ^ payload(id.appId) ^
           hashOf(id.gocbRef) ^ hashOf(id.datSet) ^ hashOf(id.goID) ^ payload(id.simulation) ^
           payload(id.confRev);
}

std::size_t hashOf(SvIdentifer const& id) {
    return hashOf(id.srcMac) ^ hashOf(id.dstMac) ^ hashOf(id.vlan) ^ payload(id.appId) ^
           hashOf(id.svID) ^ payload(id.reserved1Bit0) ^ payload(id.confRev);
}

bool equal(GooseIdentifer const& a, GooseIdentifer const& b) {
    return payload(a.srcMac) == payload(b.srcMac) && payload(a.dstMac) == payload(b.dstMac) &&
           payload(a.appId) == payload(b.appId) &&
           payload(a.reserved1Bit0) == payload(b.reserved1Bit0) &&
           payload(a.gocbRef) == payload(b.gocbRef) && payload(a.datSet) == payload(b.datSet) &&
           payload(a.goID) == payload(b.goID) && payload(a.simulation) == payload(b.simulation) &&
           payload(a.confRev) == payload(b.confRev);
}

bool equal(SvIdentifer const& a, SvIdentifer const& b) {
    auto const vlanA = a.vlan.value_or(VlanInfo());
    auto const vlanB = b.vlan.value_or(VlanInfo());
    auto const hsrA = a.hsr.value_or(TalIec61850::HsrInfo());
    auto const hsrB = b.hsr.value_or(TalIec61850::HsrInfo());
    return payload(a.srcMac) == payload(b.srcMac) && payload(a.dstMac) == payload(b.dstMac) &&
           payload(vlanA.priority) == payload(vlanB.priority) &&
           payload(vlanA.dei) == payload(vlanB.dei) &&
           payload(vlanA.vlanId) == payload(vlanB.vlanId) &&
           payload(hsrA.hsrSpare1) == payload(hsrB.hsrSpare1) &&
           payload(hsrA.lanId) == payload(hsrB.lanId) &&
           payload(hsrA.hsrSpare2) == payload(hsrB.hsrSpare2) &&
           payload(hsrA.hsrSpare3) == payload(hsrB.hsrSpare3) &&
           payload(a.appId) == payload(b.appId) && payload(a.svID) == payload(b.svID) &&
           payload(a.reserved1Bit0) == payload(b.reserved1Bit0) &&
           payload(a.confRev) == payload(b.confRev);
}

template <typename Stream>
Stream& findOrAdd(std::vector<Stream>& streams, Stream const& candidate) {
    for (Stream& stream : streams)
        if (equal(stream.id, candidate.id) && hashOf(stream.id) == hashOf(candidate.id))
            return stream;
    streams.push_back(candidate);
    return streams.back();
}

template <typename Stream>
void addPacket(Stream& stream, std::string const& fileName, PacketImage const& packet) {
    ++stream.packetCount;
    for (FileImage& file : stream.files) {
        if (file.fileName != fileName) continue;
        file.packets.push_back(packet);
        return;
    }
    stream.files.push_back({fileName, {packet}});
}

}  // namespace

Bytes fileOctets(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<PlainFrame> plainFrames(Bytes const& capture) {
    std::vector<PlainFrame> frames;
    Variant const* const variant = variantOf(capture);
    if (variant == nullptr) return frames;
    for (std::size_t at = fileHeaderSize; at < capture.size();) {
        Bytes const header = filledSlice(capture, at, recordHeaderSize);
        at += recordHeaderSize;
        PlainFrame frame;
        frame.fileOffset = at;
        frame.seconds = fourOctets(header, 0, variant->littleEndian);
        frame.nanoseconds = fourOctets(header, 4, variant->littleEndian);
        if (!variant->nanoseconds) frame.nanoseconds *= 1000;
        std::size_t const size = fourOctets(header, 8, variant->littleEndian);
        frame.octets = filledSlice(capture, at, size);
        at += size;
        frames.push_back(std::move(frame));
    }
    return frames;
}

void PlainIndex::add(std::string const& fileName, Bytes const& capture, Filter const& filter) {
    for (PlainFrame const& frame : plainFrames(capture)) addFrame(fileName, frame, filter);
}

void PlainIndex::addFile(std::string const& fileName, Filter const& filter) {
    add(fileName, fileOctets(fileName), filter);
}

void PlainIndex::addFrame(std::string const& fileName, PlainFrame const& frame,
                          Filter const& filter) {
    std::optional<PlainLink> const link = readLink(frame.octets);
    if (!link) return;
    PacketImage packet;
    if (link->etherType == 0x88B8 && filter.parseGoose) {
        PlainGoose candidate;
        if (!readGoose(frame, *link, filter.gooseFilters, candidate, packet)) return;
        addPacket(findOrAdd(gooses_, candidate), fileName, packet);
    }
    if (link->etherType == 0x88BA && filter.parseSv) {
        PlainSv candidate;
        if (!readSv(frame, *link, filter.svFilters, candidate, packet)) return;
        PlainSv& stream = findOrAdd(svs_, candidate);
        stream.smpCnt = std::max(stream.smpCnt, candidate.smpCnt);
        stream.smpRate = candidate.smpRate;
        stream.noASDU = std::max(stream.noASDU, candidate.noASDU);
        addPacket(stream, fileName, packet);
    }
}

IndexImage PlainIndex::image() const {
    IndexImage image;
    for (PlainGoose const& goose : gooses_)
        image.streams.push_back({identityText(goose.id), goose.packetCount, 0, 0, 0, goose.files});
    for (PlainSv const& sv : svs_)
        image.streams.push_back(
            {identityText(sv.id), sv.packetCount, sv.smpCnt, sv.smpRate, sv.noASDU, sv.files});
    return sorted(std::move(image));
}

}  // namespace TalTest
