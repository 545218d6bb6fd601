#include "tools/report/ReportHead.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <utility>
#include <variant>

#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/output/WithCommas.hpp"
#include "tools/render/DataText.hpp"
#include "tools/render/DurationText.hpp"
#include "tools/render/EventRow.hpp"
#include "tools/render/UtcText.hpp"
#include "tools/render/ValueText.hpp"
#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::captureTimeOf;
using TalIec61850Analysis::Finding;
using TalIec61850Analysis::FindingKind;
using TalIec61850Analysis::GooseEvent;
using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::MemberChange;
using TalIec61850Analysis::Severity;
using TalIec61850Analysis::StreamSummary;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficStream;

namespace {

std::string timeText(std::int64_t time) {
    return time == kNoTime ? "at no time" : toUtcText(captureTimeOf(time));
}

std::string counted(std::uint64_t count, std::string_view noun) {
    return fmt::format("{} {}{}", withCommas(count), noun, count == 1 ? "" : "s");
}

std::string changesText(GooseEvent const& event, TrafficStream const& stream,
                        PictureNames const& names) {
    constexpr std::size_t kMost = 2;
    std::string text;
    std::size_t told = 0;
    for (MemberChange const& change : event.changes) {
        if (std::holds_alternative<TalIec61850Analysis::UtcTime>(change.to.value)) {
            continue;
        }
        if (told == kMost || text.size() > 120) {
            return text + "; ...";
        }
        text +=
            fmt::format("{}{}: {} -> {}", text.empty() ? "" : "; ", names.of(stream, change.member),
                        change.from ? toText(*change.from) : "none", toText(change.to));
        ++told;
    }
    return text;
}

}  // namespace

void FindingsInShort::add(Finding const& finding) {
    Severity const severity = finding.severity();
    ++(severity == Severity::error ? errors : severity == Severity::warning ? warnings : notes);
    if (!worst || severity > worst->severity()) {
        worst = finding;
    }
    bool const isClock = finding.kind == FindingKind::clockFailure ||
                         finding.kind == FindingKind::clockNotSynchronized;
    clockFindings += isClock ? 1 : 0;
}

std::string filesLine(std::vector<std::string> const& files, TrafficIndex const& index,
                      std::vector<bool> const& areWanted, std::int64_t begin, std::int64_t end) {
    constexpr std::size_t kMostNames = 3;
    std::string names;
    if (files.size() <= kMostNames) {
        for (std::string const& file : files) {
            names += (names.empty() ? "" : ", ") + escapeText(file);
        }
    } else {
        names = plural(files.size(), "file");
    }
    std::uint64_t packets = 0;
    std::size_t sv = 0;
    std::size_t goose = 0;
    for (std::size_t i = 0; i < index.streams().size(); ++i) {
        TrafficStream const& stream = index.streams()[i];
        if (areWanted[i]) {
            packets += stream.packets;
            ++(stream.key.protocol == Protocol::sv ? sv : goose);
        }
    }
    return fmt::format("{}: from {} to {}, {}. {} in {} of Sampled Values and {} of GOOSE.", names,
                       timeText(begin), timeText(end), durationText(begin, end),
                       counted(packets, "packet"), counted(sv, "stream"), withCommas(goose));
}

std::string clocksLine(std::vector<StreamSummary> const& summaries, TrafficIndex const& index,
                       FindingsInShort const& findings, PictureNames const& names) {
    std::size_t streams = 0;
    std::size_t global = 0;
    StreamSummary const* worst = nullptr;
    constexpr std::uint8_t kGlobal = 2;
    for (StreamSummary const& summary : summaries) {
        TrafficStream const& stream = index.streams()[summary.stream];
        if (stream.key.protocol != Protocol::sv) {
            continue;
        }
        ++streams;
        if (summary.lowestSynch == kGlobal) {
            ++global;
        } else if (worst == nullptr || summary.lowestSynch < worst->lowestSynch) {
            worst = &summary;  // none at all is the lowest
        }
    }
    std::string const ofWorst =
        worst == nullptr
            ? std::string()
            : names.of(index.streams()[worst->stream]) +
                  (worst->lowestSynch ? fmt::format(" had smpSynch {} ({})", *worst->lowestSynch,
                                                    smpSynchText(*worst->lowestSynch))
                                      : std::string(" has no smpSynch"));
    std::string text = "Clocks: ";
    if (streams == 0) {
        text += "no Sampled Values tell of theirs";
    } else if (global == streams) {
        text += fmt::format("smpSynch 2 (global) throughout, in {}", counted(streams, "SV stream"));
    } else {
        text += fmt::format("smpSynch 2 (global) throughout in {} of {}; {}",
                            global == 0 ? "none" : std::to_string(global),
                            counted(streams, "SV stream"), ofWorst);
    }
    if (findings.clockFindings > 0) {
        text += fmt::format("; {} of a clock that failed or is not synchronized",
                            counted(findings.clockFindings, "finding"));
    }
    return text + ".";
}

std::string findingsLine(FindingsInShort const& findings, TrafficIndex const& index,
                         FindingText& words, PictureNames const& names) {
    if (!findings.worst) {
        return "Findings: none.";
    }
    Finding const& worst = *findings.worst;
    std::string const of = worst.stream ? names.of(index.streams()[*worst.stream]) + ": " : "";
    std::string_view const kind = worst.severity() == Severity::error     ? "first error"
                                  : worst.severity() == Severity::warning ? "first warning"
                                                                          : "first note";
    return fmt::format("Findings: {}, {}, {}; {} {}: {}{}.", counted(findings.errors, "error"),
                       counted(findings.warnings, "warning"), counted(findings.notes, "note"), kind,
                       timeText(worst.from), of, escapeText(words.sentence(worst)));
}

std::string eventsLine(EventsInShort const& events, TrafficIndex const& index,
                       PictureNames const& names) {
    if (events.first.empty()) {
        return "State changes: none.";
    }
    GooseEvent const& first = events.first.front();
    TrafficStream const& stream = index.streams()[first.stream];
    std::string const changes = changesText(first, stream, names);
    std::string text = fmt::format(
        "State changes: {} in {}; first {}: {} began state {}{}", withCommas(events.count),
        counted(events.streams, "GOOSE stream"), timeText(first.arrival), names.of(stream),
        first.stNum, changes.empty() ? "" : " (" + changes + ")");
    if (events.first.size() > 1) {
        GooseEvent const& next = events.first[1];
        text += fmt::format(", then {} after {}", names.of(index.streams()[next.stream]),
                            durationText(first.arrival, next.arrival));
    }
    return text + ".";
}

}  // namespace TalIec61850Tools
