#include <TalIec61850Analysis/events/GooseEvent.hpp>
#include <TalIec61850Analysis/events/StateWatch.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

StateMessage stateMessage(TrafficStream const& stream, StreamWays const& ways, PacketRef packet) {
    PacketColumns const& packets = stream.parts[packet.part].packets;
    PacketFlags const flags = packets.flags()[packet.packet];
    return {.arrival = packets.times()[packet.packet],
            .packet = packet,
            .number = {packets.stNums()[packet.packet], packets.sqNums()[packet.packet]},
            .way = ways.wayOf(packet.part, flags),
            .isCounted = flags.firstCounter() == CounterState::held &&
                         flags.secondCounter() == CounterState::held};
}

void StateWatch::add(StateMessage const& message, LifeReader const& lifeOf, StateChangeSink sink) {
    if (candidate_) {
        StateMessage const held = *candidate_;
        candidate_.reset();
        if (message.isCounted && isRestart(held.number, message.number, newest_.number)) {
            change(held, true, sink);
        }
    }
    take(message, lifeOf, sink);
}

void StateWatch::take(StateMessage const& message, LifeReader const& lifeOf, StateChangeSink sink) {
    if (!message.isCounted) {
        return;
    }
    if (!isStarted_) {
        isStarted_ = true;
        setNewest(message);
        return;
    }
    bool const isOtherWay = message.way != newest_.way;
    switch (turnOf(message.number, newest_.number, isOtherWay,
                   [&] { return isExpired(message.arrival, lifeOf); })) {
        case MessageTurn::later:
            accept(message, sink);
            return;
        case MessageTurn::same:
            heard_ = isOtherWay ? heard_ : message.arrival;
            return;
        case MessageTurn::restart:
            change(message, true, sink);
            return;
        case MessageTurn::mayBeRestart:
            candidate_ = message;
            return;
        case MessageTurn::older:
            return;
    }
}

bool StateWatch::isExpired(std::int64_t arrival, LifeReader const& lifeOf) {
    if (!life_) {
        life_ = lifeOf(newest_.packet);
    }
    std::int64_t const expiry = expiryOf(heard_, *life_);
    return expiry != kNoTime && arrival != kNoTime && arrival > expiry;
}

void StateWatch::accept(StateMessage const& message, StateChangeSink sink) {
    if (message.number.stNum != newest_.number.stNum) {
        change(message, false, sink);
        return;
    }
    if (state_) {
        repeat(message);
    }
    setNewest(message);
}

/// The state goes on.
void StateWatch::repeat(StateMessage const& message) {
    ++state_->retransmissionCount;
    if (message.arrival == kNoTime) {
        return;
    }
    if (heard_ != kNoTime) {
        std::int64_t const interval = message.arrival - heard_;
        state_->longestInterval = std::max(state_->longestInterval.value_or(interval), interval);
    }
    bool const isRoom = state_->retransmissions.size() < GooseEvent::kMostRetransmissions;
    if (isRoom && state_->arrival != kNoTime) {
        state_->retransmissions.push_back(message.arrival - state_->arrival);
    }
}

void StateWatch::change(StateMessage const& message, bool isRestart, StateChangeSink sink) {
    finish(sink);
    state_ = {.arrival = message.arrival,
              .packet = message.packet,
              .before = newest_.packet,
              .number = message.number,
              .previousStNum = newest_.number.stNum,
              .isRestart = isRestart,
              .retransmissions = {},
              .longestInterval = {}};
    setNewest(message);
}

void StateWatch::setNewest(StateMessage const& message) {
    newest_ = message;
    heard_ = message.arrival;
    life_.reset();
}

void StateWatch::finish(StateChangeSink sink) {
    if (state_) {
        sink(*state_);
        state_.reset();
    }
}

}  // namespace TalIec61850Analysis::detail
