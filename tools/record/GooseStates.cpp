#include "tools/record/GooseStates.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <map>
#include <utility>
#include <variant>

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

/// The states of one stream, as they are collected: by name, in the order in which they were met.
class StateCollector {
public:
    explicit StateCollector(std::string const& gocbRef) : gocbRef_(gocbRef) {}

    void add(std::int64_t time, DataViews const& values) { addAll(time, values, ""); }

    [[nodiscard]] std::vector<GooseState> take() { return std::move(states_); }

private:
    static constexpr std::size_t kDoublePointBits = 2;

    // NOLINTNEXTLINE(misc-no-recursion): values are nested no deeper than is read
    void addAll(std::int64_t time, DataViews const& values, std::string const& parent) {
        std::size_t number = 0;
        for (DataView const& value : values) {
            std::string const path = fmt::format("{}{}", parent, ++number);
            if (auto const* const members = std::get_if<DataViews>(&value.value)) {
                addAll(time, *members, path + ".");
            } else if (auto const* const flag = std::get_if<bool>(&value.value)) {
                note(path, time, *flag);
            } else if (auto const* const bits = std::get_if<BitStringView>(&value.value);
                       bits != nullptr && bits->size() == kDoublePointBits) {
                note(path + " bit 1", time, (*bits)[0]);
                note(path + " bit 2", time, (*bits)[1]);
            }
        }
    }

    void note(std::string const& path, std::int64_t time, bool isSet) {
        auto const [known, isNew] = places_.try_emplace(path, states_.size());
        if (isNew) {
            states_.push_back({.name = gocbRef_ + " " + path, .times = {}, .states = {}});
        }
        GooseState& state = states_[known->second];
        std::uint8_t const value = isSet ? 1 : 0;
        if (state.states.empty() || state.states.back() != value) {
            state.times.push_back(time);
            state.states.push_back(value);
        }
    }

    std::string gocbRef_;
    std::map<std::string, std::size_t> places_;
    std::vector<GooseState> states_;
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

std::vector<GooseState> readGooseStates(TrafficIndex const& index, FrameReader& frames) {
    std::vector<GooseState> all;
    for (TrafficStream const& stream : index.streams()) {
        if (stream.key.protocol != StreamProtocol::goose) {
            continue;
        }
        StateCollector collector(stream.key.name);
        stream.visit({}, [&](PacketRef const& ref) {
            StreamPart const& part = stream.parts[ref.part];
            if (part.packets.flags()[ref.packet].isCopy()) {
                return;
            }
            RecordView const& view =
                frames.read(part.file, part.packets.frameOffsets()[ref.packet]);
            GooseView const goose =
                viewGoose(view.frame, part.packets.pduOffsets()[ref.packet], originOf(view.record));
            if (goose.allData) {
                collector.add(part.packets.times()[ref.packet], *goose.allData);
            }
        });
        auto states = collector.take();
        all.insert(all.end(), std::make_move_iterator(states.begin()),
                   std::make_move_iterator(states.end()));
    }
    return all;
}

}  // namespace TalIec61850Tools
