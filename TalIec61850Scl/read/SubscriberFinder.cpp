#include <TalIec61850Scl/read/SubscriberFinder.hpp>
#include <algorithm>

namespace TalIec61850Scl::detail {

namespace {

using TalIec61850Analysis::StreamProtocol;

/// Control blocks that an input can listen to which names data alone; more do not send the same.
constexpr std::size_t kMostPublishers = 16;

}  // namespace

SubscriberFinder::SubscriberFinder(StationDescription& station,
                                   std::vector<std::vector<NamedMember>> const& structures)
    : station_(station), structures_(structures) {
    members_.resize(station.dataSets.size());
    controlBlocksOfDataSets_.resize(station.dataSets.size());
    for (std::size_t i = 0; i < station.dataSets.size(); ++i) {
        dataSetsOfIeds_[station.dataSets[i].ied].push_back(i);
    }
    for (std::size_t i = 0; i < station.controlBlocks.size(); ++i) {
        if (auto const dataSet = station.controlBlocks[i].dataSet) {
            controlBlocksOfDataSets_[*dataSet].push_back(i);
        }
    }
}

void SubscriberFinder::addName(ControlBlockName const& name, StreamProtocol protocol,
                               std::size_t controlBlock) {
    (protocol == StreamProtocol::goose ? goose_ : sv_).try_emplace(keyOf(name), controlBlock);
}

bool SubscriberFinder::add(FoundInput const& input, std::string const& ied) {
    return input.block.name.empty() ? addByData(input, ied) : addByName(input, ied);
}

bool SubscriberFinder::addByName(FoundInput const& input, std::string const& ied) {
    std::string const key = keyOf(input.block);
    bool isFound = false;
    for (StreamProtocol const protocol : {StreamProtocol::goose, StreamProtocol::sv}) {
        if (input.protocol.value_or(protocol) == protocol) {
            auto const& names = protocol == StreamProtocol::goose ? goose_ : sv_;
            if (auto const found = names.find(key); found != names.end()) {
                addTo(found->second, input, ied, SubscriptionSource::controlBlock);
                isFound = true;
            }
        }
    }
    return isFound;
}

bool SubscriberFinder::addByData(FoundInput const& input, std::string const& ied) {
    DataSetNumbers const& data = dataOf(input.block.ied);
    auto const found = data.find(input.data);
    if (found == data.end()) {
        return false;
    }
    std::size_t publishers = 0;
    for (std::size_t const dataSet : found->second) {
        for (std::size_t const controlBlock : controlBlocksOfDataSets_[dataSet]) {
            ControlBlock const& block = station_.controlBlocks[controlBlock];
            if (publishers < kMostPublishers &&
                input.protocol.value_or(block.protocol) == block.protocol) {
                ++publishers;
                addTo(controlBlock, input, ied, SubscriptionSource::data);
            }
        }
    }
    return publishers > 0;
}

void SubscriberFinder::addTo(std::size_t controlBlock, FoundInput const& input,
                             std::string const& ied, SubscriptionSource source) {
    ControlBlock& block = station_.controlBlocks[controlBlock];
    Subscriber& subscriber = block.subscribers.emplace_back();
    subscriber.ied = ied;
    subscriber.node = input.node;
    subscriber.intAddr = input.intAddr;
    subscriber.source = source;
    subscriber.place = input.place;
    if (block.dataSet && !input.data.empty()) {
        MemberNumbers const& members = membersOf(*block.dataSet);
        if (auto const found = members.find(input.data); found != members.end()) {
            subscriber.member = found->second;
        }
    }
}

SubscriberFinder::MemberNumbers const& SubscriberFinder::membersOf(std::size_t dataSet) {
    MemberNumbers& numbers = members_[dataSet];
    if (numbers.empty()) {
        auto const& members = station_.dataSets[dataSet].members;
        numbers.reserve(members.size() + structures_[dataSet].size());
        for (std::uint32_t i = 0; i < members.size(); ++i) {
            numbers.try_emplace(members[i].name, i);
        }
        for (auto const& [name, first] : structures_[dataSet]) {
            numbers.try_emplace(name, first);
        }
    }
    return numbers;
}

SubscriberFinder::DataSetNumbers const& SubscriberFinder::dataOf(std::string const& ied) {
    auto const [found, isNew] = data_.try_emplace(ied);
    DataSetNumbers& numbers = found->second;
    if (isNew) {
        auto const add = [&](std::string_view name, std::size_t dataSet) {
            std::vector<std::size_t>& all = numbers[name];
            if (all.size() < kMostPublishers && (all.empty() || all.back() != dataSet)) {
                all.push_back(dataSet);
            }
        };
        for (std::size_t const dataSet : dataSetsOfIeds_[ied]) {
            for (DataSetMember const& member : station_.dataSets[dataSet].members) {
                add(member.name, dataSet);
            }
            for (auto const& [name, first] : structures_[dataSet]) {
                add(name, dataSet);
            }
        }
    }
    return numbers;
}

}  // namespace TalIec61850Scl::detail
