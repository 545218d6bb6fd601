#include <TalIec61850Scl/read/DataSetReader.hpp>
#include <TalIec61850Scl/read/Document.hpp>
#include <TalIec61850Scl/read/FileBudget.hpp>
#include <TalIec61850Scl/read/LogicalNodes.hpp>
#include <TalIec61850Scl/read/NamedChildren.hpp>
#include <TalIec61850Scl/read/ReadAddress.hpp>
#include <TalIec61850Scl/read/ReadControlBlock.hpp>
#include <TalIec61850Scl/read/ReadFile.hpp>
#include <array>
#include <utility>

namespace TalIec61850Scl::detail {

namespace {

using TalIec61850Analysis::StreamProtocol;

RedundancyProtocol redundancyOf(Element connectedAccessPoint) {
    std::string_view const protocol = trimmed(connectedAccessPoint.nameIn("redProt"));
    return protocol == "hsr"    ? RedundancyProtocol::hsr
           : protocol == "prp"  ? RedundancyProtocol::prp
           : protocol == "rstp" ? RedundancyProtocol::rstp
                                : RedundancyProtocol::none;
}

std::optional<StreamProtocol> protocolOfService(std::string_view service) {
    return service == "GOOSE" ? std::optional(StreamProtocol::goose)
           : service == "SMV" ? std::optional(StreamProtocol::sv)
                              : std::nullopt;
}

/// What a key of a map takes beside its text, about.
constexpr std::size_t kRoomOfAKey = 96;

/// What a control block takes, with the keys by which it is found when files are joined.
std::size_t roomOf(FoundControlBlock const& found) {
    ControlBlock const& block = found.block;
    constexpr std::size_t kCopies = 3;
    std::size_t const names = block.ied.size() + block.ldInst.size() + block.name.size() +
                              block.reference.size() + found.node.size();
    std::size_t octets = sizeof(FoundControlBlock) + 2 * kRoomOfAKey + kCopies * names +
                         found.accessPoint.size() + block.id.size() + block.desc.size() +
                         block.dataSetReference.value_or("").size();
    for (Subscriber const& subscriber : block.subscribers) {
        octets += sizeof(Subscriber) + subscriber.ied.size() + subscriber.node.size();
    }
    return octets;
}

std::size_t roomOf(FoundInput const& input) {
    return sizeof(FoundInput) + input.node.size() + input.intAddr.size() + input.data.size() +
           input.block.ied.size() + input.block.ldInst.size() + input.block.node.size() +
           input.block.name.size();
}

/// Goes through one document.
class FileReader {
public:
    explicit FileReader(Document const& document)
        : document_(document), dataSets_(document, content_.diagnostics, children_) {
        content_.budget = FileBudget(document.size());
    }

    FileContent read() {
        Element const root = document_.root();
        if (auto const place = document_.brokenAt()) {
            content_.diagnostics.add(DiagnosticCode::notXml, *place, "");
        }
        if (root && !root.is("SCL")) {
            content_.diagnostics.add(DiagnosticCode::notScl, document_.placeOf(root), root.name());
        } else if (root) {
            isEdition2_ = root.attribute("version").has_value();
            for (Element const ied : root.children("IED")) {
                readIed(ied);
            }
            for (Element const communication : root.children("Communication")) {
                readCommunication(communication);
            }
        }
        return std::move(content_);
    }

private:
    struct ReadNode {
        Element element;
        std::string name;
        std::string_view ldInst;
        std::string_view domain;
        Element accessPoint;
    };

    void readIed(Element ied) {
        ied_ = content_.ieds.size();
        content_.ieds.emplace_back(ied.nameIn("name"));
        if (!ied.attribute("name")) {
            content_.diagnostics.add(DiagnosticCode::missingAttribute, document_.placeOf(ied),
                                     "name");
        }
        LogicalNodes nodes(ied);
        for (Element const accessPoint : ied.children("AccessPoint")) {
            for (Element const server : accessPoint.children("Server")) {
                for (Element const device : server.children("LDevice")) {
                    readDevice(device, accessPoint, nodes);
                }
            }
            readNodes(accessPoint, accessPoint, {}, {}, nodes);
        }
    }

    void readDevice(Element device, Element accessPoint, LogicalNodes& nodes) {
        std::string_view const inst = device.nameIn("inst");
        std::string domain(device.nameIn("ldName"));
        if (domain.empty()) {
            domain.append(content_.ieds[ied_]).append(inst);
        }
        readNodes(device, accessPoint, inst, domain, nodes);
    }

    /// @param parent  an LDevice, or an access point that has nodes of its own: a client
    void readNodes(Element parent, Element accessPoint, std::string_view ldInst,
                   std::string_view domain, LogicalNodes& nodes) {
        constexpr std::array<std::string_view, 3> kNames{"prefix", "lnClass", "inst"};
        for (Element node = parent.firstChild(); node; node = node.next()) {
            if (!node.is("LN") && !node.is("LN0")) {
                continue;
            }
            auto const names = node.attributes(kNames);
            if (names.name(1).empty()) {
                miss(node, "lnClass");
            }
            node_ = {.element = node,
                     .name = logicalNodeName(names.name(0), lnClassOf(node, names.name(1)),
                                             names.name(2)),
                     .ldInst = ldInst,
                     .domain = domain,
                     .accessPoint = accessPoint};
            for (Element each = node.firstChild(); each; each = each.next()) {
                if (!each.is("DOI")) {
                    readPart(each, nodes);
                }
            }
        }
    }

    /// Tells that an attribute is missing.
    void miss(Element element, std::string_view attribute) {
        if (content_.diagnostics.takes(DiagnosticCode::missingAttribute)) {
            content_.diagnostics.add(DiagnosticCode::missingAttribute, document_.placeOf(element),
                                     attribute);
        }
    }

    /// Whether there is room for something of so many octets; tells where there is none.
    [[nodiscard]] bool hasRoom(Element element, std::size_t octets) {
        if (content_.budget.take(octets)) {
            return true;
        }
        content_.diagnostics.addOnce(DiagnosticCode::memoryLimit, document_.placeOf(element),
                                     element.name());
        return false;
    }

    /// One element of a logical node.
    void readPart(Element part, LogicalNodes& nodes) {
        std::string_view const kind = part.name();
        if (kind == "GSEControl" || kind == "SampledValueControl") {
            if (isControlBlock(part)) {
                addControlBlock(part, nodes);
            }
        } else if (kind == "ReportControl" || kind == "LogControl") {
            std::string key = keyOf({.ied = content_.ieds[ied_],
                                     .ldInst = std::string(node_.ldInst),
                                     .node = node_.name,
                                     .name = std::string(part.nameIn("name"))});
            if (hasRoom(part, kRoomOfAKey + key.size())) {
                content_.otherControlBlocks.insert(std::move(key));
            }
        } else if (kind == "Inputs") {
            readInputs(part);
        }
    }

    void addControlBlock(Element element, LogicalNodes& nodes) {
        FoundControlBlock found;
        found.accessPoint = node_.accessPoint.nameIn("name");
        found.node = node_.name;
        found.block = readControlBlock(element,
                                       {.ied = content_.ieds[ied_],
                                        .ldInst = node_.ldInst,
                                        .domain = node_.domain,
                                        .node = node_.name,
                                        .isEdition2 = isEdition2_},
                                       document_, content_.diagnostics);
        if (hasRoom(element, roomOf(found))) {
            content_.controlBlocks.push_back(std::move(found));
            addDataSet(element, content_.controlBlocks.back().block, nodes);
        }
    }

    /// @param element  of the control block
    void addDataSet(Element element, ControlBlock& block, LogicalNodes& nodes) {
        if (!block.dataSetReference) {
            return;
        }
        Element const dataSet = children_.find(node_.element, "DataSet", element.nameIn("datSet"));
        if (!dataSet) {
            content_.diagnostics.add(DiagnosticCode::missingDataSet, block.place,
                                     *block.dataSetReference);
            return;
        }
        auto const [number, isNew] =
            numbers_.try_emplace(dataSet.identity(), content_.dataSets.size());
        if (isNew) {
            content_.dataSets.push_back(
                dataSets_.read(dataSet, nodes, content_.ieds[ied_], *block.dataSetReference));
        }
        block.dataSet = number->second;
    }

    // Attributes of an ExtRef, and where they are among these.
    enum : std::size_t {
        kIedName,
        kLdInst,
        kPrefix,
        kLnClass,
        kLnInst,
        kDoName,
        kDaName,
        kIntAddr,
        kService,
        kBlockLdInst,
        kBlockPrefix,
        kBlockLnClass,
        kBlockLnInst,
        kBlockName
    };
    static constexpr std::array<std::string_view, 14> kInputNames{
        "iedName", "ldInst",      "prefix",    "lnClass",   "lnInst",     "doName",    "daName",
        "intAddr", "serviceType", "srcLDInst", "srcPrefix", "srcLNClass", "srcLNInst", "srcCBName"};

    void readInputs(Element inputs) {
        std::string path(node_.ldInst);
        path.append(path.empty() ? "" : "/").append(node_.name);
        for (Element const reference : inputs.children("ExtRef")) {
            readInput(reference, path);
        }
    }

    /// @param node  that has the input
    void readInput(Element reference, std::string const& node) {
        auto const attributes = reference.attributes(kInputNames);
        std::string_view const publisher = attributes.name(kIedName);
        std::string_view const service = trimmed(attributes.name(kService));
        if (publisher.empty() || service == "Report" || service == "Poll") {
            return;
        }
        FoundInput input;
        input.ied = ied_;
        input.node = node;
        input.intAddr = attributes.name(kIntAddr);
        input.protocol = protocolOfService(service);
        input.block.ied = publisher == "@" ? content_.ieds[ied_] : publisher;
        input.block.name = attributes.name(kBlockName);
        if (!input.block.name.empty()) {
            input.block.ldInst =
                attributes.name(attributes.has(kBlockLdInst) ? kBlockLdInst : kLdInst);
            std::string_view const lnClass = attributes.name(kBlockLnClass);
            input.block.node =
                logicalNodeName(attributes.name(kBlockPrefix), lnClass.empty() ? "LLN0" : lnClass,
                                attributes.name(kBlockLnInst));
        }
        if (auto const object = attributes.name(kDoName); !object.empty()) {
            std::string& data = input.data;
            data.reserve(64);
            data.append(attributes.name(kLdInst)).append(1, '/');
            data.append(attributes.name(kPrefix)).append(attributes.name(kLnClass));
            data.append(attributes.name(kLnInst)).append(1, '.').append(object);
            if (auto const attribute = attributes.name(kDaName); !attribute.empty()) {
                data.append(1, '.').append(attribute);
            }
        }
        input.place = document_.placeOf(reference);
        if (hasRoom(reference, roomOf(input))) {
            content_.inputs.push_back(std::move(input));
        }
    }

    void readCommunication(Element communication) {
        for (Element const network : communication.children("SubNetwork")) {
            for (Element const accessPoint : network.children("ConnectedAP")) {
                readAccessPoint(accessPoint);
            }
        }
    }

    void readAccessPoint(Element accessPoint) {
        std::string_view const ied = accessPoint.nameIn("iedName");
        std::string_view const name = accessPoint.nameIn("apName");
        RedundancyProtocol const redundancy = redundancyOf(accessPoint);
        if (!hasRoom(accessPoint,
                     sizeof(FoundAccessPoint) + kRoomOfAKey + 2 * (ied.size() + name.size()))) {
            return;
        }
        content_.accessPoints.push_back({.ied = std::string(ied),
                                         .name = std::string(name),
                                         .redundancy = redundancy,
                                         .place = document_.placeOf(accessPoint)});
        for (Element each = accessPoint.firstChild(); each; each = each.next()) {
            bool const isSv = each.is("SMV");
            if (!isSv && !each.is("GSE")) {
                continue;
            }
            std::string_view const ldInst = each.nameIn("ldInst");
            std::string_view const block = each.nameIn("cbName");
            if (!hasRoom(each, sizeof(FoundAddress) + kRoomOfAKey +
                                   2 * (ied.size() + name.size() + ldInst.size() + block.size()))) {
                return;
            }
            FoundAddress& found = content_.addresses.emplace_back();
            found.protocol = isSv ? StreamProtocol::sv : StreamProtocol::goose;
            found.ied = ied;
            found.accessPoint = name;
            found.ldInst = ldInst;
            found.name = block;
            found.address = readAddress(each, document_, content_.diagnostics);
            found.redundancy = redundancy;
            found.place = document_.placeOf(each);
        }
    }

    Document const& document_;
    FileContent content_;
    NamedChildren children_;
    DataSetReader dataSets_;
    /// Of data sets that are read, by the identities of their elements.
    std::unordered_map<std::size_t, std::size_t> numbers_;
    /// The IED that is read.
    std::size_t ied_ = 0;
    /// The logical node that is read.
    ReadNode node_;
    bool isEdition2_ = false;
};

}  // namespace

FileContent readFile(FileOctets octets, std::uint32_t file) {
    Document const document(std::move(octets), file);
    return FileReader(document).read();
}

}  // namespace TalIec61850Scl::detail
