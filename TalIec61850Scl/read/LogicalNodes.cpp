#include <TalIec61850Scl/read/LogicalNodes.hpp>
#include <TalIec61850Scl/read/NameHash.hpp>
#include <array>

namespace TalIec61850Scl::detail {

std::string logicalNodeName(std::string_view prefix, std::string_view lnClass,
                            std::string_view inst) {
    return std::string(prefix).append(lnClass).append(inst);
}

std::string_view lnClassOf(Element node, std::string_view lnClass) {
    return lnClass.empty() && node.is("LN0") ? "LLN0" : lnClass;
}

std::size_t LogicalNodes::Hash::operator()(LogicalNodeKey const& key) const {
    constexpr std::size_t kOdd = 0x9E3779B97F4A7C15U;
    NameHash const hash;
    return ((hash(key.ldInst) * kOdd + hash(key.prefix)) * kOdd + hash(key.lnClass)) * kOdd +
           hash(key.inst);
}

void LogicalNodes::index(Element device) {
    constexpr std::array<std::string_view, 3> kNames{"prefix", "lnClass", "inst"};
    std::string_view const ldInst = device.nameIn("inst");
    for (Element node = device.firstChild(); node; node = node.next()) {
        if (node.is("LN") || node.is("LN0")) {
            auto const names = node.attributes(kNames);
            nodes_.try_emplace({.ldInst = ldInst,
                                .prefix = names.name(0),
                                .lnClass = lnClassOf(node, names.name(1)),
                                .inst = names.name(2)},
                               node);
        }
    }
}

Element LogicalNodes::find(LogicalNodeKey const& key) {
    if (!isIndexed_) {
        isIndexed_ = true;
        for (Element const accessPoint : ied_.children("AccessPoint")) {
            for (Element const server : accessPoint.children("Server")) {
                for (Element const device : server.children("LDevice")) {
                    index(device);
                }
            }
        }
    }
    auto const found = nodes_.find(key);
    return found == nodes_.end() ? Element{} : found->second;
}

}  // namespace TalIec61850Scl::detail
