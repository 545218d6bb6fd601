#include "tools/render/SampleRow.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/packet/SampleQuality.hpp>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

#include "tools/render/Cells.hpp"
#include "tools/render/QualityText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::Octets;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleState;
using TalIec61850Analysis::SampleTimeSource;

namespace {

using Sampled = SampleRow const&;

std::optional<CaptureTime> timeOf(std::int64_t time) {
    return time == kNoTime ? std::nullopt : std::optional(captureTimeOf(time));
}

Cell nanosecondsCell(std::int64_t time) { return time == kNoTime ? Cell() : Cell(time); }

Cell timeTextCell(std::int64_t time) {
    // Dates before 1970 and after 2262 are no times of captures; a fit may lead there.
    return time < 0 ? Cell() : timeCell(timeOf(time));
}

Cell timeSourceCell(SampleTimeSource source) {
    switch (source) {
        case SampleTimeSource::refrTm:
            return std::string_view("refrTm");
        case SampleTimeSource::smpCnt:
            return std::string_view("smpCnt");
        case SampleTimeSource::fit:
            return std::string_view("fit");
        default:
            return {};
    }
}

Cell asduPlaceCell(Sampled row) {
    return row.isMissing() ? Cell() : Cell(row.block->places[row.row].fileOffset);
}

Cell smpCntCell(Sampled row) {
    return row.block->states[row.row] == SampleState::uncounted ? Cell()
                                                                : Cell(row.block->smpCnts[row.row]);
}

Cell smpSynchCell(Sampled row) {
    auto const synch = row.block->smpSynchs[row.row];
    return synch == SampleBlock::kNoSynch ? Cell() : Cell(synch);
}

void const* sampledStream(Sampled row) { return row.stream; }
void const* sampledFile(Sampled row) { return row.file; }

std::vector<Field<SampleRow>> commonFields() {
    return {
        {"time", [](Sampled r) { return timeTextCell(r.block->arrivals[r.row]); }},
        {"timeNs", [](Sampled r) { return nanosecondsCell(r.block->arrivals[r.row]); }},
        {"sampleTime", [](Sampled r) { return timeTextCell(r.block->sampleTimes[r.row]); }},
        {"sampleTimeNs", [](Sampled r) { return nanosecondsCell(r.block->sampleTimes[r.row]); }},
        {"sampleTimeSource", [](Sampled r) { return timeSourceCell(r.block->timeSources[r.row]); }},
        {"file", [](Sampled r) -> Cell { return *r.file; }, sampledFile},
        {"position", asduPlaceCell},
        {"source", [](Sampled r) { return addressCell(r.stream->key.source); }, sampledStream},
        {"svID", [](Sampled r) -> Cell { return std::string_view(r.stream->key.name); },
         sampledStream},
        {"appId", [](Sampled r) { return appIdCell(r.stream->key.appId); }, sampledStream},
        {"asdu", [](Sampled r) -> Cell { return r.block->places[r.row].asdu + 1U; }},
        {"smpCnt", smpCntCell},
        {"smpSynch", smpSynchCell},
        {"missing", [](Sampled r) -> Cell { return r.isMissing(); }},
    };
}

/// Appends a number as short as it reads back equal; what JSON has no number for is left to the
/// caller.
template <typename Value>
void appendNumber(std::string& text, Value value) {
    std::array<char, 40> digits{};
    auto const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    text.append(digits.data(), end);
}

void appendReal(std::string& text, std::floating_point auto value, bool isJson) {
    if (isJson && !std::isfinite(value)) {
        text += "null";
    } else {
        appendNumber(text, value);
    }
}

void appendValue(std::string& text, Sampled row, std::size_t channel, bool isJson) {
    std::visit(
        [&](auto const& values) {
            auto const value = values[row.row];
            bool const isScaled =
                row.scales != nullptr && !row.scales->empty() && (*row.scales)[channel];
            if (isScaled) {
                appendReal(text, (*(*row.scales)[channel])(static_cast<double>(value)), isJson);
            } else if constexpr (std::is_floating_point_v<decltype(value)>) {
                appendReal(text, value, isJson);
            } else {
                appendNumber(text, value);
            }
        },
        row.block->channels[channel].values);
}

/// Appends the word, if the channel has one.
/// @return whether it has
bool appendQuality(std::string& text, Sampled row, std::size_t channel) {
    auto const& qualities = row.block->channels[channel].qualities;
    if (qualities.empty()) {
        return false;
    }
    appendNumber(text, qualities[row.row]);
    return true;
}

std::string hexText(Sampled row) {
    std::string text;
    for (std::uint8_t const octet : row.block->octetsOf(row.row)) {
        text += fmt::format("{:02x}", octet);
    }
    return text;
}

/// Writes the channels of a row, into the same memory for every row.
class ChannelTexts {
public:
    explicit ChannelTexts(SampleForm const& form) : form_(form) {}

    /// Of csv: value and quality of each channel, with commas between them.
    [[nodiscard]] ReadyText columns(Sampled row) {
        text_.clear();
        bool isFirst = true;
        for (std::size_t const channel : form_.channels) {
            text_ += isFirst ? "" : ",";
            if (row.isOctets()) {
                text_ += isFirst && !row.isMissing() ? hexText(row) : "";
                text_ += ',';
            } else if (row.isMissing() || channel >= row.block->channels.size()) {
                text_ += ',';
            } else {
                appendValue(text_, row, channel, false);
                text_ += ',';
                appendQuality(text_, row, channel);
            }
            isFirst = false;
        }
        return {text_};
    }

    /// Of json: the values as an array.
    [[nodiscard]] ReadyText values(Sampled row) {
        text_.clear();
        if (row.isMissing()) {
            return {"null"};
        }
        if (row.isOctets()) {
            text_ = '"' + hexText(row) + '"';
            return {text_};
        }
        appendArray(row, [&](std::size_t channel) { appendValue(text_, row, channel, true); });
        return {text_};
    }

    /// Of json: the quality words as an array.
    [[nodiscard]] ReadyText qualities(Sampled row) {
        text_.clear();
        if (row.isMissing() || row.isOctets() || !row.block->layout.layout->hasQuality()) {
            return {"null"};
        }
        appendArray(row, [&](std::size_t channel) {
            if (!appendQuality(text_, row, channel)) {
                text_ += "null";
            }
        });
        return {text_};
    }

    /// The value of one channel. Octets take the place of the first.
    [[nodiscard]] Cell value(Sampled row, std::size_t channel) {
        text_.clear();
        if (row.isMissing()) {
            return {};
        }
        if (row.isOctets()) {
            return channel == 0 ? Cell(hexText(row)) : Cell();
        }
        if (channel >= row.block->channels.size()) {
            return {};
        }
        appendValue(text_, row, channel, form_.format == Format::json);
        return ReadyText{text_};
    }

private:
    template <typename Append>
    void appendArray(Sampled row, Append const& append) {
        text_ += '[';
        visitChannels(form_, row, [&](std::size_t channel) {
            text_ += text_.size() == 1 ? "" : ",";
            append(channel);
        });
        text_ += ']';
    }

    SampleForm const& form_;
    std::string text_;
};

bool hasChannel(Sampled row) { return !row.isMissing() && !row.isOctets(); }

Cell channelNumberCell(Sampled row) { return hasChannel(row) ? Cell(row.channel + 1) : Cell(); }

Cell channelNameCell(Sampled row) {
    bool const isKnown =
        hasChannel(row) && row.meanings != nullptr && row.channel < row.meanings->size();
    return isKnown ? Cell(std::string_view((*row.meanings)[row.channel].name)) : Cell();
}

std::optional<std::uint32_t> qualityOf(Sampled row, std::size_t channel) {
    if (channel >= row.block->channels.size()) {
        return std::nullopt;
    }
    auto const& qualities = row.block->channels[channel].qualities;
    return qualities.empty() ? std::nullopt : std::optional(qualities[row.row]);
}

Cell channelQualityCell(Sampled row, std::size_t channel) {
    auto const quality = hasChannel(row) ? qualityOf(row, channel) : std::nullopt;
    return quality ? Cell(*quality) : Cell();
}

Cell channelQualityTextCell(Sampled row) {
    auto const quality = hasChannel(row) ? qualityOf(row, row.channel) : std::nullopt;
    return quality ? Cell(toText(SampleQuality{*quality})) : Cell();
}

std::string channelName(SampleForm const& form, std::size_t channel) {
    return channel < form.names.size() ? form.names[channel] : std::string();
}

/// The names of a channel's value and of its quality.
std::pair<std::string, std::string> columnNamesOf(SampleForm const& form, std::size_t channel) {
    std::string const name = channelName(form, channel);
    return name.empty() ? std::pair(fmt::format("value{}", channel + 1),
                                    fmt::format("quality{}", channel + 1))
                        : std::pair(name, name + ".quality");
}

/// The names of the columns that one field is made of.
std::string_view columnNames(SampleForm const& form, std::string& names) {
    for (std::size_t const channel : form.channels) {
        auto const [value, quality] = columnNamesOf(form, channel);
        names += fmt::format("{}{},{}", names.empty() ? "" : ",", value, quality);
    }
    return names;
}

/// A field for each value and each quality.
void addChannelFields(std::vector<Field<SampleRow>>& fields, SampleForm const& form,
                      std::shared_ptr<ChannelTexts> const& texts) {
    auto const names = std::make_shared<std::vector<std::pair<std::string, std::string>>>();
    for (std::size_t const channel : form.channels) {
        names->push_back(columnNamesOf(form, channel));
    }
    for (std::size_t i = 0; i < names->size(); ++i) {
        std::size_t const channel = form.channels[i];
        fields.push_back({(*names)[i].first, [texts, names, channel](Sampled r) -> Cell {
                              return texts->value(r, channel);
                          }});
        fields.push_back({(*names)[i].second,
                          [channel](Sampled r) -> Cell { return channelQualityCell(r, channel); }});
    }
}

/// Of a table: "good" where all are, else the channels that are not.
Cell qualitySummaryCell(Sampled row, SampleForm const& form) {
    if (!hasChannel(row) || !row.block->layout.layout->hasQuality()) {
        return {};
    }
    std::string text;
    for (std::size_t const channel : form.channels) {
        auto const quality = qualityOf(row, channel);
        if (quality && *quality != 0) {
            std::string const name = channelName(form, channel);
            text += text.empty() ? "" : "; ";
            text += fmt::format("{}: {}", name.empty() ? std::to_string(channel + 1) : name,
                                toText(SampleQuality{*quality}));
        }
    }
    return text.empty() ? std::string("good") : text;
}

Cell tableValueCell(Sampled row, std::size_t channel) {
    if (row.isMissing()) {
        return {};
    }
    if (row.isOctets()) {
        return channel == 0 ? Cell(hexText(row)) : Cell();
    }
    if (channel >= row.block->channels.size()) {
        return {};
    }
    std::string text;
    appendValue(text, row, channel, false);
    return text;
}

Cell missingMark(Sampled row) {
    return row.isMissing() ? Cell(std::string_view("missing")) : Cell();
}

std::vector<Column<SampleRow>> tableColumns(std::vector<Field<SampleRow>> const& fields,
                                            SampleForm const& form) {
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(fields, field, std::move(heading));
    };
    std::vector<Column<SampleRow>> columns = {
        column("sampleTime", {"SAMPLE TIME", Align::left, {.rank = 0}}),
        column("sampleTimeSource", {"BY", Align::left, {.rank = 60}}),
        column("svID", {"SVID", Align::left, fitName(3, 8)}),
        column("smpCnt", {"SMPCNT", Align::right, {.rank = 1}}),
        column("smpSynch", {"SYNCH", Align::right, {.rank = 50}}),
        {{"", Align::left, {.rank = 2}}, missingMark, "missing"},
    };
    if (form.isLong) {
        columns.push_back(column("channel", {"CHANNEL", Align::right, {.rank = 4}}));
        columns.push_back(column("name", {"NAME", Align::left, {.rank = 4}}));
        columns.push_back(column("value", {"VALUE", Align::right, {.rank = 4}}));
        columns.push_back(column("qualityText", {"QUALITY", Align::left, {.rank = 5}}));
        return columns;
    }
    std::size_t rank = 4;
    for (std::size_t const channel : form.channels) {
        std::string const name = channelName(form, channel);
        columns.push_back(
            {{name.empty() ? std::to_string(channel + 1) : name, Align::right, {.rank = rank++}},
             [channel](Sampled r) { return tableValueCell(r, channel); }});
    }
    columns.push_back({{"QUALITY", Align::left, {.rank = rank, .least = 4}},
                       [&form](Sampled r) { return qualitySummaryCell(r, form); }});
    return columns;
}

}  // namespace

RowLayout<SampleRow> sampleRowLayout(SampleForm const& form) {
    RowLayout<SampleRow> layout{.fields = commonFields(), .columns = {}};
    auto const texts = std::make_shared<ChannelTexts>(form);
    auto& fields = layout.fields;
    if (form.isLong) {
        fields.push_back({"channel", channelNumberCell});
        fields.push_back({"name", channelNameCell});
        fields.push_back({"value", [texts](Sampled r) { return texts->value(r, r.channel); }});
        fields.push_back({"quality", [](Sampled r) { return channelQualityCell(r, r.channel); }});
        fields.push_back({"qualityText", channelQualityTextCell});
    } else if (form.format == Format::csv || form.format == Format::spreadsheet) {
        if (!form.channels.empty() && !form.hasFieldPerChannel) {
            auto const names = std::make_shared<std::string>();
            fields.push_back({columnNames(form, *names),
                              [texts, names](Sampled r) -> Cell { return texts->columns(r); }});
        }
    } else {
        fields.push_back({"values", [texts](Sampled r) -> Cell { return texts->values(r); }});
        fields.push_back({"quality", [texts](Sampled r) -> Cell { return texts->qualities(r); }});
    }
    if (form.hasFieldPerChannel && !form.isLong) {
        addChannelFields(fields, form, texts);
    }
    layout.columns = tableColumns(fields, form);
    return layout;
}

}  // namespace TalIec61850Tools
