#pragma once

// Internal: which control blocks inputs listen to.

#include <TalIec61850Scl/model/StationDescription.hpp>
#include <TalIec61850Scl/read/FileContent.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace TalIec61850Scl::detail {

/// Adds subscribers to the control blocks of a station, when all of these are known.
class SubscriberFinder {
public:
    /// @param station     whose data sets do not change while this object is used
    /// @param structures  of the data sets
    SubscriberFinder(StationDescription& station,
                     std::vector<std::vector<NamedMember>> const& structures);

    /// Makes a control block known by a name.
    void addName(ControlBlockName const& name, TalIec61850Analysis::StreamProtocol protocol,
                 std::size_t controlBlock);

    /// Adds a subscriber to the control blocks that an input listens to.
    /// @param ied  that listens
    /// @return false where the control block that it names is not there, or nobody sends the data
    bool add(FoundInput const& input, std::string const& ied);

private:
    using MemberNumbers = std::unordered_map<std::string_view, std::uint32_t>;
    /// Data sets that have a reference.
    using DataSetNumbers = std::unordered_map<std::string_view, std::vector<std::size_t>>;

    bool addByName(FoundInput const& input, std::string const& ied);
    bool addByData(FoundInput const& input, std::string const& ied);
    void addTo(std::size_t controlBlock, FoundInput const& input, std::string const& ied,
               SubscriptionSource source);
    [[nodiscard]] MemberNumbers const& membersOf(std::size_t dataSet);
    [[nodiscard]] DataSetNumbers const& dataOf(std::string const& ied);

    StationDescription& station_;
    std::vector<std::vector<NamedMember>> const& structures_;
    std::unordered_map<std::string, std::size_t> goose_;
    std::unordered_map<std::string, std::size_t> sv_;
    /// By number of the data set; made when first used.
    std::vector<MemberNumbers> members_;
    std::unordered_map<std::string, std::vector<std::size_t>> dataSetsOfIeds_;
    std::vector<std::vector<std::size_t>> controlBlocksOfDataSets_;
    std::unordered_map<std::string, DataSetNumbers> data_;
};

}  // namespace TalIec61850Scl::detail
