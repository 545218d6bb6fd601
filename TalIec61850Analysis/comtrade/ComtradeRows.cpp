#include <TalIec61850Analysis/comtrade/ComtradeClock.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeRows.hpp>
#include <TalIec61850Analysis/comtrade/RequireWritable.hpp>
#include <TalIec61850Analysis/comtrade/RowShape.hpp>
#include <TalIec61850Analysis/comtrade/SampleStore.hpp>
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

namespace TalIec61850Analysis {

namespace {

constexpr std::size_t kBufferSize = std::size_t{128} * 1024;
/// No more rows are encoded at once: of few channels, many rows would fit into the buffer.
constexpr std::size_t kMostRows = 8192;
/// Of binary data, rows whose columns are written one after the other.
constexpr std::size_t kTileRows = 256;

constexpr std::size_t kLongestNumber = 10;
constexpr std::size_t kLongestSample = 13;

template <typename Unsigned>
void putLittleEndian(std::uint8_t* place, Unsigned number) {
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        place[i] = static_cast<std::uint8_t>(number >> 8U * i);
    }
}

/// The octets that a row needs at most.
std::size_t largestRowOf(ComtradeRecord const& record) {
    if (record.format.data != ComtradeData::ascii) {
        return detail::RowShape(record).size();
    }
    // Sample number, stamp, each with a comma after it; CR LF.
    return kLongestNumber + 1 + kLongestSample + 1 + record.analogs.size() * (kLongestSample + 1) +
           record.digitals.size() * 2 + 2;
}

bool isAnySet(ComtradeDigitalColumn states) {
    std::uint8_t all = 0;
    for (std::uint8_t const state : states) {
        all = static_cast<std::uint8_t>(all | state);
    }
    return all != 0;
}

std::size_t rowsIn(ComtradeSamples const& samples) {
    return std::visit([](auto const& span) { return span.size(); }, samples);
}

/// Rows of a block that are encoded at once.
struct Part {
    std::span<ComtradeAnalogColumn const> analogs;
    std::span<ComtradeDigitalColumn const> digitals;
    std::size_t first;
    std::size_t rows;
};

}  // namespace

struct ComtradeRows::State {
    State(ComtradeRecord const& record, Take givenTake)
        : take(std::move(givenTake)),
          data(record.format.data),
          promised(record.rows),
          digitals(record.digitals.size()),
          shape(record),
          clock(record),
          losses(record.analogs.size()),
          largestRow(largestRowOf(record)),
          rowsAtOnce(std::clamp(kBufferSize / largestRow, std::size_t{1}, kMostRows)),
          buffer(rowsAtOnce * largestRow) {
        stores.reserve(record.analogs.size());
        for (ComtradeAnalog const& analog : record.analogs) {
            stores.emplace_back(record.format, analog.step);
        }
        if (data == ComtradeData::ascii) {
            numbers.resize(rowsAtOnce * record.analogs.size());
        } else if (shape.words() != 0) {
            words.resize(rowsAtOnce);
        }
    }

    [[nodiscard]] std::size_t rowsOf(std::span<ComtradeAnalogColumn const> analogs,
                                     std::span<ComtradeDigitalColumn const> digitalColumns) const;
    void encode(Part const& part);
    void encodeBinary(Part const& part);
    void encodeTile(Part const& part);
    void encodeText(Part const& part);
    template <typename Put>
    void storeSamples(Part const& part, std::size_t analog, Put put);
    void putStamps(std::uint8_t* place, std::size_t rows);
    void putWords(std::uint8_t* place, Part const& part, std::size_t word);
    void handOver();

    Take take;
    ComtradeData data;
    std::uint64_t promised;
    std::uint64_t added = 0;
    std::size_t digitals;
    detail::RowShape shape;
    detail::ComtradeClock clock;
    std::vector<detail::SampleStore> stores;
    std::vector<ComtradeLosses> losses;
    std::size_t largestRow;
    std::size_t rowsAtOnce;
    std::vector<std::uint8_t> buffer;
    std::size_t used = 0;
    /// Of the part that is encoded as text: what is stored, row by row.
    std::vector<std::int64_t> numbers;
    /// Of the part that is encoded: one word of each row.
    std::vector<std::uint16_t> words;
};

std::size_t ComtradeRows::State::rowsOf(
    std::span<ComtradeAnalogColumn const> analogs,
    std::span<ComtradeDigitalColumn const> digitalColumns) const {
    if (analogs.size() != stores.size() || digitalColumns.size() != digitals) {
        throw std::invalid_argument("ComtradeRows::add: other channels than the record has");
    }
    // A record has a channel at least.
    std::size_t const rows =
        analogs.empty() ? digitalColumns.front().size() : rowsIn(analogs.front().samples);
    bool const fits =
        std::all_of(analogs.begin(), analogs.end(),
                    [rows](ComtradeAnalogColumn const& column) {
                        return rowsIn(column.samples) == rows &&
                               (column.missing.empty() || column.missing.size() == rows);
                    }) &&
        std::all_of(digitalColumns.begin(), digitalColumns.end(),
                    [rows](ComtradeDigitalColumn column) { return column.size() == rows; });
    if (!fits) {
        throw std::invalid_argument("ComtradeRows::add: columns of different lengths");
    }
    if (rows > promised - added) {
        throw std::length_error("ComtradeRows::add: more rows than the record has");
    }
    return rows;
}

void ComtradeRows::State::encode(Part const& part) {
    if (data == ComtradeData::ascii) {
        encodeText(part);
        added += part.rows;
    } else {
        encodeBinary(part);
    }
}

/// Calls `put` with each row of the part, and what is stored of its sample.
template <typename Put>
void ComtradeRows::State::storeSamples(Part const& part, std::size_t analog, Put put) {
    ComtradeAnalogColumn const& column = part.analogs[analog];
    auto const missing =
        column.missing.empty() ? column.missing : column.missing.subspan(part.first, part.rows);
    std::visit(
        [&](auto const& samples) {
            stores[analog].store(samples.subspan(part.first, part.rows), missing, losses[analog],
                                 put);
        },
        column.samples);
}

void ComtradeRows::State::encodeBinary(Part const& part) {
    // Some rows at a time, column by column: they stay in the processor's nearest cache.
    for (std::size_t done = 0; done < part.rows; done += kTileRows) {
        encodeTile({.analogs = part.analogs,
                    .digitals = part.digitals,
                    .first = part.first + done,
                    .rows = std::min(kTileRows, part.rows - done)});
    }
}

void ComtradeRows::State::encodeTile(Part const& part) {
    std::size_t const rowSize = shape.size();
    std::uint8_t* const begin = buffer.data() + used;
    putStamps(begin, part.rows);
    added += part.rows;
    for (std::size_t analog = 0; analog < stores.size(); ++analog) {
        std::uint8_t* const place = begin + shape.sampleOffset(analog);
        if (data == ComtradeData::binary32) {
            storeSamples(part, analog, [=](std::size_t row, std::int64_t number) {
                putLittleEndian(place + row * rowSize, static_cast<std::uint32_t>(number));
            });
        } else {
            storeSamples(part, analog, [=](std::size_t row, std::int64_t number) {
                putLittleEndian(place + row * rowSize, static_cast<std::uint16_t>(number));
            });
        }
    }
    for (std::size_t word = 0; word < shape.words(); ++word) {
        putWords(begin + shape.wordOffset(word), part, word);
    }
    used += part.rows * rowSize;
}

void ComtradeRows::State::putStamps(std::uint8_t* place, std::size_t rows) {
    for (std::uint64_t row = 1; row <= rows; ++row, place += shape.size()) {
        putLittleEndian(place, static_cast<std::uint32_t>(added + row));
        putLittleEndian(place + 4, static_cast<std::uint32_t>(clock.next()));
    }
}

/// Puts one word of each row: its first channel in the lowest bit.
void ComtradeRows::State::putWords(std::uint8_t* place, Part const& part, std::size_t word) {
    std::size_t const firstChannel = word * detail::RowShape::kDigitalsPerWord;
    std::size_t const channels =
        std::min(detail::RowShape::kDigitalsPerWord, digitals - firstChannel);
    std::fill_n(words.begin(), part.rows, std::uint16_t{0});
    for (std::size_t bit = 0; bit < channels; ++bit) {
        auto const states = part.digitals[firstChannel + bit].subspan(part.first, part.rows);
        if (!isAnySet(states)) {
            continue;  // as quality bits mostly are
        }
        auto const mask = static_cast<std::uint16_t>(1U << bit);
        for (std::size_t row = 0; row < part.rows; ++row) {
            words[row] = static_cast<std::uint16_t>(words[row] | (states[row] != 0 ? mask : 0));
        }
    }
    for (std::size_t row = 0; row < part.rows; ++row) {
        putLittleEndian(place + row * shape.size(), words[row]);
    }
}

void ComtradeRows::State::encodeText(Part const& part) {
    std::size_t const analogs = stores.size();
    for (std::size_t analog = 0; analog < analogs; ++analog) {
        std::int64_t* const place = numbers.data() + analog;
        storeSamples(part, analog,
                     [=](std::size_t row, std::int64_t number) { place[row * analogs] = number; });
    }
    auto* const begin = reinterpret_cast<char*>(buffer.data());
    char* const end = begin + buffer.size();
    char* place = begin + used;
    for (std::size_t row = 0; row < part.rows; ++row) {
        // It fits: a part has no more rows than the buffer has room for, however long they are.
        place = std::to_chars(place, end, added + row + 1).ptr;
        *place++ = ',';
        place = std::to_chars(place, end, clock.next()).ptr;
        for (std::int64_t const number : std::span(numbers).subspan(row * analogs, analogs)) {
            *place++ = ',';
            place = std::to_chars(place, end, number).ptr;
        }
        for (ComtradeDigitalColumn const states : part.digitals) {
            *place++ = ',';
            *place++ = states[part.first + row] != 0 ? '1' : '0';
        }
        *place++ = '\r';
        *place++ = '\n';
    }
    used = static_cast<std::size_t>(place - begin);
}

void ComtradeRows::State::handOver() {
    std::size_t const size = std::exchange(used, 0);
    if (size != 0) {
        take(std::span<std::uint8_t const>(buffer).first(size));
    }
}

ComtradeRows::ComtradeRows(ComtradeRecord const& record, Take take) {
    detail::requireWritable(record);
    state_ = std::make_unique<State>(record, std::move(take));
}

ComtradeRows::~ComtradeRows() = default;

void ComtradeRows::add(std::span<ComtradeAnalogColumn const> analogs,
                       std::span<ComtradeDigitalColumn const> digitals) {
    State& state = *state_;
    std::size_t const rows = state.rowsOf(analogs, digitals);
    for (std::size_t first = 0; first < rows;) {
        std::size_t room = (state.buffer.size() - state.used) / state.largestRow;
        if (room == 0) {
            state.handOver();
            room = state.rowsAtOnce;
        }
        std::size_t const count = std::min(room, rows - first);
        state.encode({.analogs = analogs, .digitals = digitals, .first = first, .rows = count});
        first += count;
    }
}

void ComtradeRows::finish() {
    if (state_->added != state_->promised) {
        throw std::length_error("ComtradeRows::finish: fewer rows than the record has");
    }
    state_->handOver();
}

std::uint64_t ComtradeRows::rows() const noexcept { return state_->added; }

std::span<ComtradeLosses const> ComtradeRows::losses() const noexcept { return state_->losses; }

}  // namespace TalIec61850Analysis
