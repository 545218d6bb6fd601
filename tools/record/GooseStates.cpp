#include "tools/record/GooseStates.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <map>
#include <utility>
#include <variant>

#include "tools/names/MemberNames.hpp"
#include "tools/render/AddressText.hpp"
#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

std::string publisherText(StreamKey const& key) {
    std::string text = key.source ? toText(*key.source) : "unknown source";
    if (!key.vlans.empty()) {
        text += fmt::format(" VLAN {}", key.vlans.back().id);
    }
    return text;
}

/// The end of a name tells members apart.
std::string endOf(std::string const& name, std::string const& front) {
    constexpr std::size_t kLongest = 64;
    std::size_t const room = kLongest - front.size();
    return front + name.substr(name.size() > room ? name.size() - room : 0);
}

/// Whether each of these is there more than once.
std::vector<bool> areRepeated(std::vector<std::string> const& ids) {
    std::map<std::string_view, std::size_t> counts;
    for (std::string const& id : ids) {
        ++counts[id];
    }
    std::vector<bool> repeated;
    repeated.reserve(ids.size());
    for (std::string const& id : ids) {
        repeated.push_back(counts[id] > 1);
    }
    return repeated;
}

/// The states of one stream, as they are collected: by place, in the order in which they were met.
class StateCollector {
public:
    /// @param wish  must outlive this
    StateCollector(StreamKey const& stream, GooseStateWish const& wish)
        : stream_(stream), wish_(wish) {}

    void add(std::int64_t time, DataViews const& allData, NamedPlace const& place) {
        allData_ = allData;
        place_ = place;
        path_.clear();
        addAll(time, allData, "");
    }

    [[nodiscard]] std::vector<GooseState> take() { return std::move(states_); }

private:
    static constexpr std::size_t kDoublePointBits = 2;
    /// Of a member that is not wanted.
    static constexpr std::size_t kNoState = static_cast<std::size_t>(-1);

    // NOLINTNEXTLINE(misc-no-recursion): values are nested no deeper than is read
    void addAll(std::int64_t time, DataViews const& values, std::string const& parent) {
        path_.push_back(0);
        for (DataView const& value : values) {
            std::string const place = fmt::format("{}{}", parent, path_.back() + 1);
            if (auto const* const members = std::get_if<DataViews>(&value.value)) {
                addAll(time, *members, place + ".");
            } else if (auto const* const flag = std::get_if<bool>(&value.value)) {
                note(place, "", time, *flag);
            } else if (auto const* const bits = std::get_if<BitStringView>(&value.value);
                       bits != nullptr && bits->size() == kDoublePointBits) {
                note(place, " bit 1", time, (*bits)[0]);
                note(place, " bit 2", time, (*bits)[1]);
            }
            ++path_.back();
        }
        path_.pop_back();
    }

    void note(std::string const& place, std::string_view bit, std::int64_t time, bool isSet) {
        auto const [known, isNew] = places_.try_emplace(place + std::string(bit), kNoState);
        if (isNew) {
            known->second = begin(place, bit);
        }
        if (known->second == kNoState) {
            return;
        }
        GooseState& state = states_[known->second];
        std::uint8_t const value = isSet ? 1 : 0;
        if (state.states.empty() || state.states.back() != value) {
            state.times.push_back(time);
            state.states.push_back(value);
        }
    }

    /// Begins a state at the place that was come to.
    /// @return its number, or kNoState where it is not wanted
    std::size_t begin(std::string const& place, std::string_view bit) {
        MemberNames const names = wish_.names != nullptr
                                      ? wish_.names->namesOf(stream_, allData_, place_)
                                      : MemberNames();
        bool const isWanted =
            meetsPattern(wish_.members, place) || names.meet(wish_.members, path_);
        if (!isWanted) {
            return kNoState;
        }
        std::string const name(names.nameAt(path_));
        std::string const full = names.fullNameAt(path_);
        states_.push_back(
            {.name = fmt::format("{} {}{}", stream_.name, name.empty() ? place : name, bit),
             .component = full.substr(0, full.find('.')),
             .publisher = publisherText(stream_),
             .times = {},
             .states = {}});
        return states_.size() - 1;
    }

    StreamKey const& stream_;
    GooseStateWish const& wish_;
    std::map<std::string, std::size_t> places_;
    std::vector<GooseState> states_;
    /// The message that is looked at, and where in it.
    DataViews allData_;
    NamedPlace place_;
    std::vector<std::uint32_t> path_;
};

}  // namespace

void GooseState::at(std::span<std::int64_t const> instants, std::vector<std::uint8_t>& asked,
                    std::size_t& cursor) const {
    asked.clear();
    for (std::int64_t const instant : instants) {
        while (cursor < times.size() && times[cursor] <= instant) {
            ++cursor;
        }
        asked.push_back(cursor == 0 ? std::uint8_t{0} : states[cursor - 1]);
    }
}

std::vector<std::string> stateIds(std::vector<GooseState> const& states) {
    std::vector<std::string> ids;
    ids.reserve(states.size());
    for (GooseState const& state : states) {
        ids.push_back(endOf(state.name, ""));
    }
    std::vector<bool> repeated = areRepeated(ids);
    for (std::size_t i = 0; i < ids.size(); ++i) {
        ids[i] = repeated[i] ? endOf(states[i].name, states[i].publisher + " ") : ids[i];
    }
    repeated = areRepeated(ids);
    for (std::size_t i = 0; i < ids.size(); ++i) {
        ids[i] = repeated[i] ? endOf(states[i].name, fmt::format("{} ", i + 1)) : ids[i];
    }
    return ids;
}

std::vector<GooseState> readGooseStates(TrafficIndex const& index, FrameReader& frames,
                                        GooseStateWish const& wish) {
    std::vector<GooseState> all;
    for (TrafficStream const& stream : index.streams()) {
        if (stream.key.protocol != StreamProtocol::goose) {
            continue;
        }
        StateCollector collector(stream.key, wish);
        stream.visit({}, [&](PacketRef const& ref) {
            StreamPart const& part = stream.parts[ref.part];
            if (part.packets.flags()[ref.packet].isCopy()) {
                return;
            }
            std::uint64_t const frameOffset = part.packets.frameOffsets()[ref.packet];
            std::size_t const pduOffset = part.packets.pduOffsets()[ref.packet];
            RecordView const& view = frames.read(part.file, frameOffset);
            GooseView const goose = viewGoose(view.frame, pduOffset, originOf(view.record));
            if (goose.allData) {
                collector.add(part.packets.times()[ref.packet], *goose.allData,
                              {.file = wish.nameOf ? wish.nameOf(part.file) : std::string_view(),
                               .position = frameOffset + pduOffset});
            }
        });
        auto states = collector.take();
        all.insert(all.end(), std::make_move_iterator(states.begin()),
                   std::make_move_iterator(states.end()));
    }
    return all;
}

}  // namespace TalIec61850Tools
