#include "tools/library/FrameVerdict.hpp"

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <algorithm>
#include <iterator>

namespace TalIec61850Tools {

using TalIec61850Analysis::FrameHeader;
using TalIec61850Parser::EthernetHeader;
using TalIec61850Parser::EthernetParser;
using TalIec61850Parser::Filter;
using TalIec61850Parser::Goose;
using TalIec61850Parser::Sv;
using TalIec61850Parser::wire::kEtherTypeVlan;
using TalIec61850Parser::wire::readPrpLan;

namespace {

/// Of tags the library reads one, with the usual TPID.
bool hasReadTags(FrameHeader const& header) {
    auto const& tags = header.vlanTags;
    return tags.empty() || (tags.size() == 1 && tags[0].tpid == kEtherTypeVlan);
}

std::optional<Protocol> protocolOf(FrameHeader const& header) {
    if (!hasReadTags(header)) {
        return std::nullopt;
    }
    if (header.isGoose()) {
        return Protocol::goose;
    }
    return header.isSv() ? std::optional(Protocol::sv) : std::nullopt;
}

/// The header as the library knows it.
EthernetHeader toEthernetHeader(FrameHeader const& header, std::optional<char> prpLan) {
    EthernetHeader ethernet;
    if (header.destination && header.source) {
        std::copy(header.destination->begin(), header.destination->end(),
                  std::begin(ethernet.dstMac));
        std::copy(header.source->begin(), header.source->end(), std::begin(ethernet.srcMac));
    }
    ethernet.etherType = header.etherType.value_or(0);
    auto const vlan = header.vlanTags.innermost();
    ethernet.hasVlan = vlan.has_value();
    ethernet.vlanId = vlan ? vlan->id : std::uint16_t{0};
    ethernet.hasHsr = header.hsr.has_value();
    ethernet.hsrLan = header.hsr ? header.hsr->lane() : char{0};
    ethernet.hasPrp = prpLan.has_value();
    ethernet.prpLan = prpLan.value_or(0);
    return ethernet;
}

bool passesLinkLayer(Protocol protocol, EthernetHeader const& header, Filter const& filter) {
    if (protocol == Protocol::goose) {
        Goose goose;
        return EthernetParser::_checkEthernetFilters(goose, filter.gooseFilters, header);
    }
    Sv sv;
    return EthernetParser::_checkEthernetFilters(sv, filter.svFilters, header);
}

/// The library's answer for a wanted frame; it is the opposite for one that its PDU rejects.
constexpr bool wantedAnswer(Protocol protocol) { return protocol == Protocol::goose; }

constexpr bool answerTo(Protocol protocol, Verdict verdict) {
    switch (verdict) {
        case Verdict::wanted:
            return wantedAnswer(protocol);
        case Verdict::rejectedByPdu:
            return !wantedAnswer(protocol);
        default:
            return verdict == Verdict::switchedOff;
    }
}

}  // namespace

std::string_view toText(Verdict verdict) {
    switch (verdict) {
        case Verdict::wanted:
            return "wanted";
        case Verdict::rejectedByLinkLayer:
            return "rejectedByLinkLayer";
        case Verdict::rejectedByPdu:
            return "rejectedByPdu";
        case Verdict::switchedOff:
            return "switchedOff";
        default:
            return "otherProtocol";
    }
}

FrameVerdict judgeFrame(std::vector<std::uint8_t> const& frame, Filter const& filter) {
    FrameHeader const header = TalIec61850Analysis::readFrameHeader(frame);
    FrameVerdict verdict;
    verdict.protocol = protocolOf(header);
    verdict.answer = EthernetParser::parsePacketSimple(frame, filter);
    if (!verdict.protocol) {
        return verdict;
    }
    Protocol const protocol = *verdict.protocol;
    bool const isOn = protocol == Protocol::goose ? filter.parseGoose : filter.parseSv;
    if (!isOn) {
        verdict.verdict = Verdict::switchedOff;
    } else if (!passesLinkLayer(protocol, toEthernetHeader(header, readPrpLan(frame)), filter)) {
        verdict.verdict = Verdict::rejectedByLinkLayer;
    } else {
        verdict.verdict =
            verdict.answer == wantedAnswer(protocol) ? Verdict::wanted : Verdict::rejectedByPdu;
    }
    return verdict;
}

std::vector<FrameVerdict> allVerdicts() {
    std::vector<FrameVerdict> verdicts;
    for (Protocol const protocol : {Protocol::goose, Protocol::sv}) {
        for (Verdict const verdict : {Verdict::wanted, Verdict::rejectedByLinkLayer,
                                      Verdict::rejectedByPdu, Verdict::switchedOff}) {
            verdicts.push_back(
                {.protocol = protocol, .verdict = verdict, .answer = answerTo(protocol, verdict)});
        }
    }
    verdicts.push_back({});
    return verdicts;
}

}  // namespace TalIec61850Tools
