#include <TalIec61850Analysis/pictures/RowTime.hpp>
#include <TalIec61850Analysis/pictures/Waveform.hpp>
#include <algorithm>
#include <limits>
#include <variant>

namespace TalIec61850Analysis {

namespace {

template <typename Value>
void keepLastOf(std::vector<Value>& values, std::size_t rows) {
    values.erase(values.begin(), values.end() - static_cast<std::ptrdiff_t>(rows));
}

}  // namespace

WaveformBuilder::WaveformBuilder(std::size_t mostRows, std::vector<std::size_t> channels)
    : mostRows_(mostRows), choice_(std::move(channels)) {
    waveform_.channelNumbers = choice_.numbers();
    waveform_.channels.resize(choice_.numbers().size());
}

void WaveformBuilder::addRun(SampleBlock const& block) {
    if (waveform_.runs.empty() || run_ != block.run) {
        run_ = block.run;
        waveform_.runs.push_back(
            {.firstRow = waveform_.size(), .rate = block.run.rate, .start = block.run.start});
    }
}

void WaveformBuilder::addChannels(SampleBlock const& block) {
    std::size_t const before = waveform_.size();
    std::size_t const rows = before + block.size();
    waveform_.channels.resize(choice_.numbers().size());
    for (std::size_t chosen = 0; chosen < waveform_.channels.size(); ++chosen) {
        WaveformChannel& channel = waveform_.channels[chosen];
        channel.values.resize(before, std::numeric_limits<double>::quiet_NaN());
        channel.qualities.resize(before);
        ChannelColumn const* const column = choice_.in(block, chosen);
        if (column != nullptr) {
            std::visit(
                [&](auto const& values) {
                    for (auto const value : values) {
                        channel.values.push_back(static_cast<double>(value));
                    }
                },
                column->values);
            channel.qualities.insert(channel.qualities.end(), column->qualities.begin(),
                                     column->qualities.end());
        }
        channel.values.resize(rows, std::numeric_limits<double>::quiet_NaN());
        channel.qualities.resize(rows);
        for (std::size_t row = 0; row < block.size(); ++row) {
            if (block.states[row] == SampleState::missing) {
                channel.values[before + row] = std::numeric_limits<double>::quiet_NaN();
            }
        }
    }
}

void WaveformBuilder::add(SampleBlock const& block) {
    choice_.addChannelsOf(block);
    waveform_.channelNumbers = choice_.numbers();
    waveform_.channelsOfStream = choice_.channelsOfStream();
    if (waveform_.isTooLong || block.size() > mostRows_ - waveform_.size()) {
        keepLast(0);
        waveform_.isTooLong = true;
        return;
    }
    addRun(block);
    addChannels(block);
    for (std::size_t row = 0; row < block.size(); ++row) {
        waveform_.times.push_back(detail::rowTime(block, row));
    }
    waveform_.states.insert(waveform_.states.end(), block.states.begin(), block.states.end());
}

void WaveformBuilder::keepLast(std::size_t rows) {
    if (rows >= waveform_.size()) {
        return;
    }
    std::size_t const gone = waveform_.size() - rows;
    keepLastOf(waveform_.times, rows);
    keepLastOf(waveform_.states, rows);
    for (WaveformChannel& channel : waveform_.channels) {
        keepLastOf(channel.values, rows);
        keepLastOf(channel.qualities, rows);
    }
    auto& runs = waveform_.runs;
    for (WaveformRun& run : runs) {
        run.firstRow = run.firstRow > gone ? run.firstRow - gone : 0;
    }
    // Of the runs that begin with the first row now, only the last one has rows.
    auto const later = std::find_if(runs.begin(), runs.end(),
                                    [](WaveformRun const& run) { return run.firstRow > 0; });
    if (rows == 0) {
        runs.clear();
    } else if (later != runs.begin()) {
        runs.erase(runs.begin(), later - 1);
    }
}

Waveform readWaveform(TrafficIndex const& index, TrafficStream const& stream, SampleOptions options,
                      std::size_t mostRows, std::vector<std::size_t> channels) {
    WaveformBuilder builder(mostRows, std::move(channels));
    SampleReader reader(index, stream, std::move(options));
    while (SampleBlock const* const block = reader.next()) {
        builder.add(*block);
        if (builder.waveform().isTooLong) {
            break;
        }
    }
    return builder.take();
}

}  // namespace TalIec61850Analysis
