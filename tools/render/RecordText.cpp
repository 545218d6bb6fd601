#include "tools/render/RecordText.hpp"

#include <fmt/format.h>

#include "tools/output/Plural.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

/// How a channel's samples are stored, where not as they are.
std::string stepText(ComtradeAnalog const& analog) {
    if (analog.step == ComtradeStep()) {
        return {};
    }
    return fmt::format("  {}: stored in steps of {} from {}, as sent\n", analog.id,
                       analog.step.size, analog.step.middle);
}

}  // namespace

std::string recordText(ComtradeRecord const& record, RecordRemarks const& remarks,
                       std::span<ComtradeLosses const> losses) {
    std::string text = "Samples of IEC 61850-9-2 streams, written by tal-iec61850.\n\nCaptures:\n";
    for (std::string const& file : remarks.files) {
        text += "  " + file + "\n";
    }
    text += fmt::format("\nFormat: {}, edition {}.\n", comtradeName(record.format.data),
                        static_cast<unsigned>(record.format.edition));
    text += fmt::format("Rows: {}, from {}.\nRate: {}.\n", record.rows, toUtcText(record.start),
                        remarks.rate);
    for (std::string const& layout : remarks.layouts) {
        text += fmt::format("Layout: {}.\n", layout);
    }
    text += remarks.missing + "\n" + remarks.times + "\n" + remarks.scales + "\n";
    if (!remarks.digitals.empty()) {
        text += remarks.digitals + "\n";
    }
    std::string steps;
    for (ComtradeAnalog const& analog : record.analogs) {
        steps += stepText(analog);
    }
    if (!steps.empty()) {
        text +=
            "Channels that are not stored as they were sent; a and b of the configuration lead "
            "back to units:\n" +
            steps;
    }
    std::string const lost = lossesText(record, losses);
    text += lost.empty() ? "No sample was beyond the range of the format.\n" : lost + ".\n";
    return text;
}

std::string lossesText(ComtradeRecord const& record, std::span<ComtradeLosses const> losses) {
    std::string text;
    for (std::size_t i = 0; i < losses.size(); ++i) {
        if (losses[i] == ComtradeLosses()) {
            continue;
        }
        text += fmt::format("{}{}:", text.empty() ? "" : "; ", record.analogs[i].id);
        if (losses[i].clamped != 0) {
            text += fmt::format(" {} beyond the range, stored as its end",
                                plural(losses[i].clamped, "sample"));
        }
        if (losses[i].notANumber != 0) {
            text +=
                fmt::format("{} {} no number, stored as missing", losses[i].clamped != 0 ? "," : "",
                            plural(losses[i].notANumber, "sample"));
        }
    }
    return text;
}

std::string_view toText(ComtradeLimit limit) {
    switch (limit) {
        case ComtradeLimit::noChannel:
            return "there is no channel";
        case ComtradeLimit::tooManyChannels:
            return "there are more than 999999 channels";
        case ComtradeLimit::noRow:
            return "there is no sample";
        case ComtradeLimit::tooManyRows:
            return "there are more rows than the format can count";
        case ComtradeLimit::noRate:
            return "the rate of the samples is not known: see --rate";
        case ComtradeLimit::tooLong:
            return "the record would end after the year 2262";
        case ComtradeLimit::noNumber:
            return "a factor or a frequency is no number";
        case ComtradeLimit::dataOfOtherEdition:
            return "binary32 is of edition 2013";
        default:
            return "the time quality is none of the format";
    }
}

}  // namespace TalIec61850Tools
