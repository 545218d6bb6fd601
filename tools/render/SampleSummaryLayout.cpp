#include "tools/render/SampleSummaryLayout.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/render/Cells.hpp"
#include "tools/render/DurationText.hpp"
#include "tools/render/IdentityFields.hpp"
#include "tools/render/SampleText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::ArrivalResiduals;
using TalIec61850Analysis::LayoutSource;
using TalIec61850Analysis::RateSource;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleCounts;
using TalIec61850Analysis::SampleTimeSource;

namespace {

using Summed = SampleSummaryRow const&;

FoundLayout const* layoutIn(Summed row) {
    return row.layout == nullptr ? nullptr : &row.layout->found;
}

Cell summedLayoutCell(Summed row) {
    return row.layout == nullptr ? Cell()
                                 : Cell(layoutText(row.layout->found, row.layout->dataSize));
}

Cell channelsCell(Summed row) {
    auto const* const found = layoutIn(row);
    return found == nullptr || !found->layout ? Cell() : Cell(found->layout->channels().size());
}

Cell layoutSourceCell(Summed row) {
    auto const* const found = layoutIn(row);
    if (found == nullptr) {
        return {};
    }
    switch (found->source) {
        case LayoutSource::given:
            return std::string_view(row.isDescribed ? "described" : "given");
        case LayoutSource::inferred:
            return std::string_view("inferred");
        case LayoutSource::undecided:
            return std::string_view("undecided");
        default:
            return {};
    }
}

/// A list of texts that need no escaping: in JSON an array, elsewhere a text with blanks.
Cell listCell(std::vector<std::string> const& items, Format format) {
    return format == Format::json ? Cell(JsonText{fmt::format("[{}]", fmt::join(items, ","))})
                                  : Cell(fmt::format("{}", fmt::join(items, " ")));
}

Cell testsCell(Summed row, Format format) {
    auto const* const found = layoutIn(row);
    if (found == nullptr) {
        return {};
    }
    std::vector<std::string> tests;
    auto const add = [&](bool isMet, std::string_view name) {
        if (isMet) {
            tests.push_back(format == Format::json ? fmt::format(R"("{}")", name)
                                                   : std::string(name));
        }
    };
    add(found->isIntegerAndQuality, "int32Quality");
    add(found->isFloatAndQuality, "float32Quality");
    add(found->isFloat, "float32");
    add(found->isValueAndTime, "valueTime");
    add(found->isZero, "zero");
    return listCell(tests, format);
}

Cell synchsCell(Summed row, Format format) {
    std::vector<std::string> met;
    for (std::uint16_t const synch : row.summary.smpSynchs) {
        if (synch != SampleBlock::kNoSynch) {
            met.push_back(std::to_string(synch));
        }
    }
    return listCell(met, format);
}

Cell foundRateCell(Summed row) {
    auto const& run = row.summary.run;
    return run && run->rate.isKnown() ? Cell(run->rate.perSecond()) : Cell();
}

Cell rateSourceCell(Summed row) {
    switch (row.summary.run ? row.summary.run->rateSource : RateSource::none) {
        case RateSource::given:
            return std::string_view("given");
        case RateSource::counter:
            return std::string_view("counter");
        case RateSource::declared:
            return std::string_view("declared");
        case RateSource::standard:
            return std::string_view("standard");
        case RateSource::arrival:
            return std::string_view("arrival");
        default:
            return {};
    }
}

Cell smpRateCell(Summed row) {
    auto const* const attributes = row.summary.attributes;
    return attributes != nullptr && attributes->smpRate ? numberCell(*attributes->smpRate) : Cell();
}

Cell smpModCell(Summed row) {
    auto const* const attributes = row.summary.attributes;
    return attributes != nullptr && attributes->smpMod ? numberCell(*attributes->smpMod) : Cell();
}

Cell countedRateCell(Summed row) {
    auto const& run = row.summary.run;
    return run && run->countedRate != 0 ? Cell(run->countedRate) : Cell();
}

std::optional<double> measuredRateOf(Summed row) {
    auto const& run = row.summary.run;
    return run && run->measuredRate > 0 ? std::optional(run->measuredRate) : std::nullopt;
}

template <SampleTimeSource source>
Cell timedByCell(Summed row) {
    return row.summary.timedBy(source);
}

template <std::int64_t ArrivalResiduals::*figure>
Cell residualCell(Summed row) {
    auto const& residuals = row.summary.residuals;
    return residuals ? Cell((*residuals).*figure) : Cell();
}

template <std::int64_t ArrivalResiduals::*figure>
Cell residualTextCell(Summed row) {
    auto const& residuals = row.summary.residuals;
    return residuals ? Cell(durationText((*residuals).*figure)) : Cell();
}

std::optional<double> driftOf(Summed row) {
    auto const& residuals = row.summary.residuals;
    return residuals ? residuals->driftPpm : std::nullopt;
}

template <std::uint64_t SampleCounts::*count>
Cell countOf(Summed row) {
    return row.summary.counts.*count;
}

/// Empty for none, so that the column goes where no stream has any.
Cell ifAny(std::uint64_t count) { return count == 0 ? Cell() : Cell(count); }

/// "smpCnt", "smpCnt, fit".
Cell timesByCell(Summed row) {
    std::vector<std::string_view> names;
    auto const add = [&](SampleTimeSource source, std::string_view name) {
        if (row.summary.timedBy(source) != 0) {
            names.push_back(name);
        }
    };
    add(SampleTimeSource::refrTm, "refrTm");
    add(SampleTimeSource::smpCnt, "smpCnt");
    add(SampleTimeSource::fit, "fit");
    return names.empty() ? Cell() : Cell(fmt::format("{}", fmt::join(names, ", ")));
}

/// How many ASDUs tell the layout; nothing where somebody says it.
Cell layoutAsdusCell(Summed row) {
    auto const* const found = layoutIn(row);
    bool const isSaid = found != nullptr && found->source == LayoutSource::given;
    return found == nullptr || isSaid ? Cell() : Cell(found->asdus);
}

/// With three decimals; what rounds to 0 has no sign.
Cell figureTextCell(std::optional<double> const& figure) {
    constexpr double kParts = 1e3;
    return figure ? Cell(fmt::format("{:.3f}", std::round(*figure * kParts) / kParts + 0.0))
                  : Cell();
}

std::vector<Field<SampleSummaryRow>> identityOfSamples() {
    auto fields = identityFields<SampleSummaryRow>([](Summed r) { return r.key; });
    std::erase_if(fields, [](auto const& field) { return field.name == "gocbRef"; });
    return fields;
}

std::vector<Field<SampleSummaryRow>> layoutAndRateFields(Format format) {
    return {{"dataSize",
             [](Summed r) { return r.layout == nullptr ? Cell() : Cell(r.layout->dataSize); }},
            {"layout", summedLayoutCell},
            {"channels", channelsCell},
            {"layoutSource", layoutSourceCell},
            {"layoutAsdus",
             [](Summed r) { return r.layout == nullptr ? Cell() : Cell(r.layout->found.asdus); }},
            {"layoutTests", [format](Summed r) { return testsCell(r, format); }},
            {"layouts", [](Summed r) -> Cell { return r.layouts; }},
            {"rate", foundRateCell},
            {"rateSource", rateSourceCell},
            {"smpRate", smpRateCell},
            {"smpMod", smpModCell},
            {"countedRate", countedRateCell},
            {"measuredRate", [](Summed r) -> Cell { return measuredRateOf(r); }},
            {"rateContradicted",
             [](Summed r) -> Cell { return r.summary.run && r.summary.run->isRateContradicted; }}};
}

std::vector<Field<SampleSummaryRow>> timeAndCountFields(Format format) {
    using Residuals = ArrivalResiduals;
    return {{"timedByRefrTm", timedByCell<SampleTimeSource::refrTm>},
            {"timedBySmpCnt", timedByCell<SampleTimeSource::smpCnt>},
            {"timedByFit", timedByCell<SampleTimeSource::fit>},
            {"untimed", timedByCell<SampleTimeSource::none>},
            {"smpSynchs", [format](Summed r) { return synchsCell(r, format); }},
            {"residualMinNs", residualCell<&Residuals::least>},
            {"residualP50Ns", residualCell<&Residuals::median>},
            {"residualP90Ns", residualCell<&Residuals::percentile90>},
            {"residualP99Ns", residualCell<&Residuals::percentile99>},
            {"residualMaxNs", residualCell<&Residuals::largest>},
            {"driftPpm", [](Summed r) -> Cell { return driftOf(r); }},
            {"received", countOf<&SampleCounts::received>},
            {"lost", countOf<&SampleCounts::lost>},
            {"late", countOf<&SampleCounts::late>},
            {"repeated", countOf<&SampleCounts::repeated>},
            {"copies", [](Summed r) -> Cell { return r.summary.copies; }},
            {"runs", countOf<&SampleCounts::runs>}};
}

std::vector<Field<SampleSummaryRow>> sampleSummaryFields(Format format) {
    auto fields = identityOfSamples();
    for (auto& part : {layoutAndRateFields(format), timeAndCountFields(format)}) {
        fields.insert(fields.end(), part.begin(), part.end());
    }
    return fields;
}

}  // namespace

RowLayout<SampleSummaryRow> sampleSummaryLayout(Format format) {
    using Residuals = ArrivalResiduals;
    RowLayout<SampleSummaryRow> layout{.fields = sampleSummaryFields(format), .columns = {}};
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(layout.fields, field, std::move(heading));
    };
    auto const right = [](std::string_view text, std::size_t rank) {
        return Heading{std::string(text), Align::right, {.rank = rank}};
    };
    auto const left = [](std::string_view text, std::size_t rank) {
        return Heading{std::string(text), Align::left, {.rank = rank}};
    };
    layout.columns = {
        column("svID", {"SVID", Align::left, fitName(0, 16)}),
        column("layout", left("LAYOUT", 4)),
        column("layoutSource", left("LAYOUT BY", 9)),
        {right("ASDUS", 19), layoutAsdusCell},
        column("rate", right("RATE/S", 1)),
        column("rateSource", left("RATE BY", 5)),
        {right("MEASURED/S", 15), [](Summed r) { return figureTextCell(measuredRateOf(r)); },
         "measuredRate"},
        {left("TIMES BY", 3), timesByCell},
        {left("SYNCH", 6), [](Summed r) { return synchsCell(r, Format::table); }, "smpSynchs"},
        column("received", right("RECEIVED", 10)),
        column("lost", right("LOST", 2)),
        {right("LATE", 13), [](Summed r) { return ifAny(r.summary.counts.late); }, "late"},
        {right("REPEATED", 14), [](Summed r) { return ifAny(r.summary.counts.repeated); },
         "repeated"},
        {right("COPIES", 16), [](Summed r) { return ifAny(r.summary.copies); }, "copies"},
        column("runs", right("RUNS", 17)),
        {right("RESIDUAL MIN", 7), residualTextCell<&Residuals::least>, "residualMinNs"},
        {right("RESIDUAL P50", 11), residualTextCell<&Residuals::median>, "residualP50Ns"},
        {right("RESIDUAL P90", 18), residualTextCell<&Residuals::percentile90>, "residualP90Ns"},
        {right("RESIDUAL P99", 8), residualTextCell<&Residuals::percentile99>, "residualP99Ns"},
        {right("RESIDUAL MAX", 12), residualTextCell<&Residuals::largest>, "residualMaxNs"},
        {right("DRIFT/PPM", 20), [](Summed r) { return figureTextCell(driftOf(r)); }, "driftPpm"},
        column("appId", right("APPID", 21)),
        column("source", left("SOURCE", 22)),
    };
    return layout;
}

}  // namespace TalIec61850Tools
