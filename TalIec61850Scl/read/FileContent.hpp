#pragma once

// Internal: what one file says, before it is joined with others.

#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <TalIec61850Scl/model/DataSet.hpp>
#include <TalIec61850Scl/read/DiagnosticList.hpp>
#include <TalIec61850Scl/read/FileBudget.hpp>
#include <TalIec61850Scl/read/NameHash.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Scl::detail {

/// What names a control block: its IED, device, logical node and itself.
struct ControlBlockName {
    std::string ied;
    std::string ldInst;
    std::string node;
    std::string name;
};

/// A control block as a key of a map.
[[nodiscard]] inline std::string keyOf(ControlBlockName const& block) {
    std::string key;
    key.reserve(block.ied.size() + block.ldInst.size() + block.node.size() + block.name.size() + 3);
    return key.append(block.ied)
        .append(1, '\n')
        .append(block.ldInst)
        .append(1, '\n')
        .append(block.node)
        .append(1, '\n')
        .append(block.name);
}

/// A control block without its address and those that listen by its data.
struct FoundControlBlock {
    ControlBlock block;
    /// The access point whose server has it.
    std::string accessPoint;
    /// Its logical node.
    std::string node;
};

/// GSE or SMV of an access point.
struct FoundAddress {
    TalIec61850Analysis::StreamProtocol protocol = TalIec61850Analysis::StreamProtocol::goose;
    std::string ied;
    std::string accessPoint;
    std::string ldInst;
    std::string name;
    ControlBlockAddress address;
    RedundancyProtocol redundancy = RedundancyProtocol::none;
    SclPlace place;
};

/// A ConnectedAP.
struct FoundAccessPoint {
    std::string ied;
    std::string name;
    RedundancyProtocol redundancy = RedundancyProtocol::none;
    SclPlace place;
};

/// An ExtRef of an input.
struct FoundInput {
    /// The IED that listens, by its number in the file.
    std::size_t ied = 0;
    std::string node;
    std::string intAddr;
    /// The control block; of its name only the IED is there where the input names data alone.
    ControlBlockName block;
    /// The data that it takes; empty where it takes none.
    std::string data;
    /// Not set where it does not say.
    std::optional<TalIec61850Analysis::StreamProtocol> protocol;
    SclPlace place;
};

/// What one file says.
struct FileContent {
    std::vector<std::string> ieds;
    std::vector<FoundControlBlock> controlBlocks;
    std::vector<DataSet> dataSets;
    std::vector<FoundAddress> addresses;
    std::vector<FoundInput> inputs;
    std::vector<FoundAccessPoint> accessPoints;
    /// Control blocks of other services: reports, logs.
    NameSet otherControlBlocks;
    DiagnosticList diagnostics;
    /// What is left for control blocks, addresses and subscribers.
    FileBudget budget;
};

}  // namespace TalIec61850Scl::detail
