#pragma once

// Internal: several files as one description.

#include <TalIec61850Scl/model/StationDescription.hpp>
#include <TalIec61850Scl/read/FileContent.hpp>
#include <TalIec61850Scl/read/NameHash.hpp>
#include <TalIec61850Scl/read/SubscriberFinder.hpp>
#include <cstddef>
#include <string>
#include <vector>

namespace TalIec61850Scl::detail {

/// Joins what files say: addresses with control blocks, subscribers with publishers.
class StationJoiner {
public:
    /// @param paths  of the files
    explicit StationJoiner(std::vector<std::string> paths);

    /// Takes in the next file.
    void add(FileContent content);
    /// The description of all files; this object is of no use after that.
    [[nodiscard]] StationDescription join();

private:
    /// Where an address is: number of the file, and among the addresses of it.
    struct AddressNumber {
        std::size_t file = 0;
        std::size_t address = 0;
    };
    /// Addresses of one control block.
    struct Addresses {
        std::vector<AddressNumber> numbers;
        bool isUsed = false;
    };

    void joinIeds();
    void joinAddresses();
    void joinControlBlocks();
    void addControlBlock(std::size_t file, FoundControlBlock& found,
                         std::vector<std::size_t>& dataSets);
    void giveAddress(std::size_t file, FoundControlBlock& found);
    [[nodiscard]] bool isSame(ControlBlock const& kept, ControlBlock const& other,
                              DataSet const* otherDataSet) const;
    void joinSubscribers();
    void joinInput(FoundInput const& input, FileContent& content, SubscriberFinder& finder);
    void dropRepeatedSubscribers();
    void noteUnused();

    StationDescription station_;
    std::vector<FileContent> files_;
    NameSet ieds_;
    NameMap<std::string, Addresses> addresses_;
    NameMap<std::string, RedundancyProtocol> attachments_;
    NameMap<std::string, std::size_t> references_;
    /// Names under which subscribers know control blocks.
    struct KnownName {
        ControlBlockName name;
        std::size_t controlBlock = 0;
    };
    std::vector<KnownName> names_;
};

}  // namespace TalIec61850Scl::detail
