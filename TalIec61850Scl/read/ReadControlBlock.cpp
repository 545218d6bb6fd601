#include <TalIec61850Scl/read/LogicalNodes.hpp>
#include <TalIec61850Scl/read/ReadControlBlock.hpp>
#include <TalIec61850Scl/read/ReadNumber.hpp>
#include <cstdint>
#include <optional>
#include <utility>

namespace TalIec61850Scl::detail {

namespace {

SmvOptions readOptions(Element options, bool isEdition2) {
    auto const has = [&](std::string_view name) { return options.flagIn(name).value_or(false); };
    return {.refreshTime = has("refreshTime"),
            .sampleSynchronized = options.flagIn("sampleSynchronized").value_or(isEdition2),
            .sampleRate = has("sampleRate"),
            .dataSet = has("dataSet") || has("dataRef"),
            .security = has("security"),
            .timestamp = has("timestamp"),
            .synchSourceId = has("synchSourceId")};
}

/// IEDs that are named as listening, one by one or a logical node of theirs.
std::vector<Subscriber> readIedNames(Element control, Document const& document) {
    std::vector<Subscriber> subscribers;
    for (Element const name : control.children("IEDName")) {
        Subscriber& subscriber = subscribers.emplace_back();
        subscriber.ied = startOf(name.content(), kMostNameOctets);
        subscriber.node = name.nameIn("ldInst");
        std::string const node =
            logicalNodeName(name.nameIn("prefix"), name.nameIn("lnClass"), name.nameIn("lnInst"));
        if (!node.empty()) {
            subscriber.node.append(subscriber.node.empty() ? "" : "/").append(node);
        }
        subscriber.source = SubscriptionSource::iedName;
        subscriber.place = document.placeOf(name);
    }
    return subscribers;
}

}  // namespace

bool isControlBlock(Element element) {
    std::string_view const name = element.name();
    return name == "SampledValueControl" ||
           (name == "GSEControl" && element.attribute("type").value_or("GOOSE") != "GSSE");
}

ControlBlock readControlBlock(Element element, ControlBlockScope const& scope,
                              Document const& document, DiagnosticList& diagnostics) {
    using TalIec61850Analysis::StreamProtocol;
    bool const isSv = element.is("SampledValueControl");
    ControlBlock block;
    block.protocol = isSv ? StreamProtocol::sv : StreamProtocol::goose;
    block.place = document.placeOf(element);
    auto const required = [&](std::string_view attribute) {
        if (!element.attribute(attribute)) {
            diagnostics.add(DiagnosticCode::missingAttribute, block.place, attribute);
        }
        return std::string(element.nameIn(attribute));
    };
    auto const number = [&](std::string_view attribute) {
        auto const text = element.attribute(attribute);
        auto const value = text ? readNumber<std::uint32_t>(*text) : std::nullopt;
        if (text && !value) {
            diagnostics.add(DiagnosticCode::badNumber, block.place, *text);
        }
        return value;
    };
    block.ied = scope.ied;
    block.ldInst = scope.ldInst;
    block.name = required("name");
    block.multicast = element.flagIn("multicast").value_or(true);
    std::string const node = std::string(scope.domain).append(1, '/').append(scope.node);
    block.reference = node;
    block.reference.append(!isSv ? "$GO$" : block.multicast ? "$MS$" : "$US$").append(block.name);
    block.id = required(isSv ? "smvID" : "appID");
    block.desc = element.textIn("desc");
    block.confRev = number("confRev");
    if (auto const dataSet = element.nameIn("datSet"); !dataSet.empty()) {
        block.dataSetReference = node;
        block.dataSetReference->append(1, '$').append(dataSet);
    }
    block.fixedOffsets = element.flagIn("fixedOffs").value_or(false);
    if (isSv) {
        block.smpRate = number("smpRate");
        block.nofASDU = number("nofASDU");
        std::string_view const unit = trimmed(element.nameIn("smpMod"));
        block.smpRateUnit = unit == "SmpPerSec"   ? SampleRateUnit::samplesPerSecond
                            : unit == "SecPerSmp" ? SampleRateUnit::secondsPerSample
                                                  : SampleRateUnit::samplesPerPeriod;
        if (Element const options = element.child("SmvOpts")) {
            block.options = readOptions(options, scope.isEdition2);
        }
    }
    block.subscribers = readIedNames(element, document);
    return block;
}

}  // namespace TalIec61850Scl::detail
