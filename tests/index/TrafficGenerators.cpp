#include "index/TrafficGenerators.hpp"

#include <algorithm>
#include <array>
#include <iomanip>
#include <ostream>
#include <string>

#include "index/BerGenerator.hpp"
#include "index/IndexImage.hpp"
#include "index/RandomPicks.hpp"
#include "support/Apdu.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest {
namespace {

using TalIec61850::GooseIdentifer;
using TalIec61850::SvIdentifer;
using TalIec61850Parser::Filter;

std::array<std::string, 3> const sources = {"00:30:a7:00:00:01", "00:30:a7:00:00:02",
                                            "ff:ee:dd:cc:bb:aa"};
std::array<std::string, 2> const destinations = {"01:0c:cd:01:00:01", "01:0c:cd:04:00:01"};
std::array<std::uint16_t, 4> const vlanIds = {0, 1, 5, 4095};
std::array<std::uint16_t, 4> const appIds = {0, 1, 0x4000, 0xFFFF};
std::array<std::uint32_t, 4> const revisions = {0, 1, 5, 0xFFFFFFFF};
std::array<std::string, 5> const names = {"", "A", "B", "LD0/LLN0$GO$gcb", std::string("A\0", 2)};
/// The last of `names` as the index holds it, beside the others.
std::array<std::string, 5> const nameTexts = {"", "A", "B", "LD0/LLN0$GO$gcb", "[41 00]"};

// --- Frames ------------------------------------------------------------------------------------

Ethernet anyLink() {
    Ethernet link = Ethernet().from(oneOf(sources)).to(oneOf(destinations));
    if (oneIn(2)) link = link.withVlan(oneOf(vlanIds), static_cast<std::uint8_t>(below(8)));
    if (oneIn(3)) link = link.withHsr(oneIn(2) ? 'A' : 'B', static_cast<std::uint16_t>(below(3)));
    if (oneIn(3)) link = link.withPrp(oneIn(2) ? 'A' : 'B', static_cast<std::uint16_t>(below(3)));
    link.padded = oneIn(4);
    return link;
}

/// The octets of a frame, with a second tag now and then, which makes it no GOOSE or SV frame.
Bytes anyTagging(Bytes frame) {
    if (!oneIn(16)) return frame;
    bool const service = oneIn(2);
    Bytes const tag = {service ? std::uint8_t{0x88} : std::uint8_t{0x81},
                       service ? std::uint8_t{0xA8} : std::uint8_t{0x00}, 0x00, anyOctet()};
    frame.insert(frame.begin() + 12, tag.begin(), tag.end());
    return frame;
}

template <typename Field>
void maybeUnset(Field& field) {
    if (oneIn(8)) field.reset();
}

GooseMessage anyGoose() {
    GooseMessage message;
    message.appId = oneOf(appIds);
    message.reserved1 = static_cast<std::uint16_t>(below(4));
    message.gocbRef = oneOf(names);
    message.datSet = oneOf(names);
    message.goID = oneOf(names);
    message.confRev = {oneOf(revisions), oneIn(4) ? below(6) : 0U};
    maybeUnset(message.gocbRef);
    maybeUnset(message.datSet);
    maybeUnset(message.goID);
    maybeUnset(message.confRev);
    if (oneIn(2)) message.simulation.reset();
    if (oneIn(4)) message.allData = randomElements(3);
    if (oneIn(8)) message.allDataTag = 0x8B;
    if (oneIn(4)) message.extraBeforeData = randomElements(2);
    if (oneIn(8)) message.trailing = anyOctets(33);
    return message;
}

Asdu anyAsdu() {
    Asdu asdu;
    asdu.svID = oneOf(names);
    asdu.smpCnt = {below(0x10000), oneIn(8) ? 1U + below(3) : 2U};
    asdu.confRev = {oneOf(revisions), oneIn(8) ? 1U + below(6) : 4U};
    if (oneIn(2)) asdu.smpRate = {below(0x10000), oneIn(8) ? 1U + below(3) : 2U};
    maybeUnset(asdu.svID);
    maybeUnset(asdu.smpCnt);
    maybeUnset(asdu.confRev);
    asdu.seqData = anyOctets(20);
    if (oneIn(8)) asdu.extraLast = randomElements(2);
    return asdu;
}

SvMessage anySv() {
    SvMessage message;
    message.appId = oneOf(appIds);
    message.reserved1 = static_cast<std::uint16_t>(below(4));
    message.asdus.resize(1 + (oneIn(3) ? below(4) : 0));
    for (Asdu& asdu : message.asdus) asdu = anyAsdu();
    message.omitNoASDU = oneIn(8);
    if (oneIn(8)) message.extraFirst = randomElements(2);
    if (oneIn(8)) message.extraInSequence = randomElements(2);
    if (oneIn(8)) message.trailing = anyOctets(33);
    return message;
}

Bytes mutated(Bytes frame) {
    for (unsigned changes = below(4); changes > 0 && !frame.empty(); --changes) {
        auto const at = frame.begin() + below(static_cast<unsigned>(frame.size()));
        switch (below(4)) {
            case 0:
                *at = anyOctet();
                break;
            case 1:
                *at = static_cast<std::uint8_t>(*at ^ (1U << below(8)));
                break;
            case 2:
                frame.insert(at, anyOctet());
                break;
            default:
                frame.erase(at);
        }
    }
    if (oneIn(8)) frame.resize(below(static_cast<unsigned>(frame.size()) + 1));
    return frame;
}

/// A frame of at most 40 octets that may begin like GOOSE or SV after any tags.
Bytes shortFrame() {
    Bytes const whole =
        ethernetFrame(anyLink(), oneIn(2) ? etherTypeGoose : etherTypeSampledValues, anyOctets(12));
    return prefix(whole, below(40));
}

Bytes anyValidFrame() {
    Ethernet const link = anyLink();
    return anyTagging(oneIn(2) ? gooseFrame(link, anyGoose()) : svFrame(link, anySv()));
}

Bytes anyBerFrame() {
    ApduHeader const header = {oneOf(appIds), static_cast<std::uint16_t>(below(4)), 0, 8};
    return ethernetFrame(anyLink(), oneIn(2) ? etherTypeGoose : etherTypeSampledValues,
                         apdu(header, wrappedAtRandom(randomElements(4))));
}

// --- Filters -----------------------------------------------------------------------------------

/// Entries set each member with a chance of one in `rarity`.
template <typename Id>
void fillEntry(Id& id, unsigned rarity) {
    id.appId.reset();
    if (oneIn(rarity)) id.srcMac = oneOf(sources);
    if (oneIn(rarity)) id.dstMac = oneOf(destinations);
    if (oneIn(rarity)) {
        id.vlan.emplace();
        if (!oneIn(4)) id.vlan->vlanId = oneOf(vlanIds);
    }
    if (oneIn(rarity)) {
        id.hsr.emplace();
        if (!oneIn(4)) id.hsr->lanId = oneIn(2) ? 'A' : 'B';
    }
    if (oneIn(rarity)) {
        id.prp.emplace();
        if (!oneIn(4)) id.prp->lanId = oneIn(2) ? 'A' : 'B';
    }
    if (oneIn(rarity)) id.appId = oneOf(appIds);
    if (oneIn(rarity)) id.reserved1Bit0 = static_cast<std::uint8_t>(below(2));
    if (oneIn(rarity)) id.confRev = oneOf(revisions);
}

GooseIdentifer gooseEntry(unsigned rarity) {
    GooseIdentifer id;
    fillEntry(id, rarity);
    if (oneIn(rarity)) id.gocbRef = oneOf(nameTexts);
    if (oneIn(rarity)) id.datSet = oneOf(nameTexts);
    if (oneIn(rarity)) id.goID = oneOf(nameTexts);
    if (oneIn(rarity)) id.simulation = oneIn(2);
    return id;
}

SvIdentifer svEntry(unsigned rarity) {
    SvIdentifer id;
    fillEntry(id, rarity);
    if (oneIn(rarity)) id.svID = oneOf(nameTexts);
    if (oneIn(rarity)) id.spareText = "A";
    return id;
}

void writeOctets(std::ostream& out, Bytes const& value) {
    out << std::hex << std::setfill('0');
    for (std::uint8_t each : value) out << std::setw(2) << unsigned{each};
    out << std::dec << std::setfill(' ');
}

}  // namespace

std::ostream& operator<<(std::ostream& out, RandomRecord const& record) {
    out << record.seconds << " + " << record.fraction << ": ";
    writeOctets(out, record.frame);
    return out;
}

rc::Gen<Bytes> frameOfRandomBer() { return rc::gen::exec(anyBerFrame); }

rc::Gen<Bytes> validFrame() { return rc::gen::exec(anyValidFrame); }

rc::Gen<Bytes> anyFrame() {
    return rc::gen::exec([] {
        switch (below(8)) {
            case 0:
                return shortFrame();
            case 1:
            case 2:
                return anyBerFrame();
            case 3:
                return mutated(anyBerFrame());
            case 4:
            case 5:
                return anyValidFrame();
            default:
                return mutated(anyValidFrame());
        }
    });
}

rc::Gen<RandomRecords> recordsOf(rc::Gen<Bytes> frames) {
    auto record = rc::gen::exec([frames] {
        std::uint32_t const seconds = oneIn(8) ? 0xFFFFFFFF : below(1000);
        std::uint32_t const fraction = below(oneIn(8) ? 0xFFFFFFFF : 1'000'000);
        return RandomRecord{seconds, fraction, *frames};
    });
    return rc::gen::resize(24, rc::gen::container<RandomRecords>(record));
}

rc::Gen<CaptureVariant> anyVariant() { return rc::gen::elementOf(captureVariants); }

rc::Gen<Filter> anyFilter() {
    return rc::gen::exec([] {
        Filter filter;
        filter.parseGoose = !oneIn(12);
        filter.parseSv = !oneIn(12);
        unsigned const rarity = 2 + below(14);
        for (unsigned i = below(4); i > 0; --i) filter.gooseFilters.push_back(gooseEntry(rarity));
        for (unsigned i = below(4); i > 0; --i) filter.svFilters.push_back(svEntry(rarity));
        return filter;
    });
}

Bytes captureOf(RandomRecords const& records, CaptureVariant variant) {
    auto const number = [variant](std::uint32_t value) {
        Bytes octetsOfNumber = bigEndian(value, 4);
        if (isLittleEndian(variant)) std::reverse(octetsOfNumber.begin(), octetsOfNumber.end());
        return octetsOfNumber;
    };
    Bytes capture = captureHeader(variant);
    for (RandomRecord const& record : records) {
        auto const size = static_cast<std::uint32_t>(record.frame.size());
        append(capture, concat({number(record.seconds), number(record.fraction), number(size),
                                number(size), record.frame}));
    }
    return capture;
}

}  // namespace TalTest

namespace TalIec61850Parser {

std::ostream& operator<<(std::ostream& out, Filter const& filter) {
    out << "goose " << filter.parseGoose << ", sv " << filter.parseSv;
    for (GooseIdentifer const& id : filter.gooseFilters) out << "\n  " << TalTest::identityText(id);
    for (SvIdentifer const& id : filter.svFilters) out << "\n  " << TalTest::identityText(id);
    return out;
}

}  // namespace TalIec61850Parser
