#include <TalIec61850Scl/read/SubscriberFinder.hpp>

namespace TalIec61850Scl::detail {

namespace {

using TalIec61850Analysis::StreamProtocol;

/// Control blocks that an input can listen to which names data alone; more do not send the same.
constexpr std::size_t kMostPublishers = 16;

}  // namespace

SubscriberFinder::SubscriberFinder(StationDescription& station) : station_(station) {
    members_.resize(station.dataSets.size());
    publishers_.resize(station.dataSets.size());
    for (std::size_t i = 0; i < station.dataSets.size(); ++i) {
        dataSetsOfIeds_[station.dataSets[i].ied].push_back(i);
    }
    for (std::size_t i = 0; i < station.controlBlocks.size(); ++i) {
        ControlBlock const& block = station.controlBlocks[i];
        if (block.dataSet) {
            Publishers& all = publishers_[*block.dataSet];
            auto& some = block.protocol == StreamProtocol::goose ? all.goose : all.sv;
            if (some.size() < kMostPublishers) {
                some.push_back(i);
            }
        }
    }
}

void SubscriberFinder::addName(ControlBlockName const& name, StreamProtocol protocol,
                               std::size_t controlBlock) {
    (protocol == StreamProtocol::goose ? goose_ : sv_).try_emplace(keyOf(name), controlBlock);
}

bool SubscriberFinder::add(FoundInput const& input, std::string const& ied, FileBudget& budget) {
    Listener const listener{.input = input, .ied = ied, .budget = budget};
    return input.block.name.empty() ? addByData(listener) : addByName(listener);
}

bool SubscriberFinder::addByName(Listener const& listener) {
    FoundInput const& input = listener.input;
    std::string const key = keyOf(input.block);
    bool isFound = false;
    for (StreamProtocol const protocol : {StreamProtocol::goose, StreamProtocol::sv}) {
        if (input.protocol.value_or(protocol) == protocol) {
            auto const& names = protocol == StreamProtocol::goose ? goose_ : sv_;
            if (auto const found = names.find(key); found != names.end()) {
                addTo(found->second, listener, SubscriptionSource::controlBlock,
                      memberOf(found->second, input.data));
                isFound = true;
            }
        }
    }
    return isFound;
}

bool SubscriberFinder::addByData(Listener const& listener) {
    FoundInput const& input = listener.input;
    std::size_t left = kMostPublishers;
    for (MemberPlace const& place : dataOf(input.block.ied).find(input.data, kMostPublishers)) {
        Publishers const& all = publishers_[place.dataSet];
        for (StreamProtocol const protocol : {StreamProtocol::goose, StreamProtocol::sv}) {
            if (input.protocol.value_or(protocol) != protocol) {
                continue;
            }
            for (std::size_t const block : protocol == StreamProtocol::goose ? all.goose : all.sv) {
                if (left > 0) {
                    --left;
                    addTo(block, listener, SubscriptionSource::data, place.member);
                }
            }
        }
    }
    return left < kMostPublishers;
}

void SubscriberFinder::addTo(std::size_t controlBlock, Listener const& listener,
                             SubscriptionSource source, std::optional<std::size_t> member) {
    FoundInput const& input = listener.input;
    if (!listener.budget.take(sizeof(Subscriber) + listener.ied.size() + input.node.size() +
                              input.intAddr.size())) {
        return;
    }
    Subscriber& subscriber = station_.controlBlocks[controlBlock].subscribers.emplace_back();
    subscriber.ied = listener.ied;
    subscriber.node = input.node;
    subscriber.intAddr = input.intAddr;
    subscriber.member = member;
    subscriber.source = source;
    subscriber.place = input.place;
}

std::optional<std::size_t> SubscriberFinder::memberOf(std::size_t controlBlock,
                                                      std::string_view data) {
    auto const dataSet = station_.controlBlocks[controlBlock].dataSet;
    if (!dataSet || data.empty()) {
        return std::nullopt;
    }
    std::optional<MemberNames>& names = members_[*dataSet];
    if (!names) {
        names.emplace().add(station_.dataSets[*dataSet], *dataSet);
    }
    auto const found = names->find(data, 1);
    return found.empty() ? std::nullopt : std::optional<std::size_t>(found.front().member);
}

MemberNames& SubscriberFinder::dataOf(std::string const& ied) {
    auto const [found, isNew] = data_.try_emplace(ied);
    if (isNew) {
        for (std::size_t const dataSet : dataSetsOfIeds_[ied]) {
            found->second.add(station_.dataSets[dataSet], dataSet);
        }
    }
    return found->second;
}

}  // namespace TalIec61850Scl::detail
