#pragma once

// Internal: which control blocks inputs listen to.

#include <TalIec61850Scl/model/StationDescription.hpp>
#include <TalIec61850Scl/read/FileBudget.hpp>
#include <TalIec61850Scl/read/FileContent.hpp>
#include <TalIec61850Scl/read/MemberNames.hpp>
#include <TalIec61850Scl/read/NameHash.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Scl::detail {

/// Adds subscribers to the control blocks of a station, when all of these are known.
class SubscriberFinder {
public:
    /// @param station  whose data sets do not change while this object is used
    explicit SubscriberFinder(StationDescription& station);

    /// Makes a control block known by a name.
    void addName(ControlBlockName const& name, TalIec61850Analysis::StreamProtocol protocol,
                 std::size_t controlBlock);

    /// Adds a subscriber to the control blocks that an input listens to.
    /// @param ied     that listens
    /// @param budget  of its file; where that is spent, it is not added
    /// @return false where the control block that it names is not there, or nobody sends the data
    bool add(FoundInput const& input, std::string const& ied, FileBudget& budget);

private:
    /// An input, and the file's means to add it.
    struct Listener {
        FoundInput const& input;
        std::string const& ied;
        FileBudget& budget;
    };
    /// Control blocks of one data set, the first few of each protocol.
    struct Publishers {
        std::vector<std::size_t> goose;
        std::vector<std::size_t> sv;
    };

    bool addByName(Listener const& listener);
    bool addByData(Listener const& listener);
    void addTo(std::size_t controlBlock, Listener const& listener, SubscriptionSource source,
               std::optional<std::size_t> member);
    [[nodiscard]] std::optional<std::size_t> memberOf(std::size_t controlBlock,
                                                      std::string_view data);
    [[nodiscard]] MemberNames& dataOf(std::string const& ied);

    StationDescription& station_;
    NameMap<std::string, std::size_t> goose_;
    NameMap<std::string, std::size_t> sv_;
    /// By number of the data set; made when first used.
    std::vector<std::optional<MemberNames>> members_;
    NameMap<std::string, std::vector<std::size_t>> dataSetsOfIeds_;
    /// By number of the data set.
    std::vector<Publishers> publishers_;
    /// By IED; made when first used.
    NameMap<std::string, MemberNames> data_;
};

}  // namespace TalIec61850Scl::detail
