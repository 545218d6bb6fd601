#include "tools/commands/CheckCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <TalIec61850Analysis/supervision/SuperviseTraffic.hpp>
#include <algorithm>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <system_error>
#include <tuple>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/FollowCheck.hpp"
#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NamesOfRun.hpp"
#include "tools/commands/NothingFoundNote.hpp"
#include "tools/commands/WantedFindings.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/CheckOptions.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/NameOptions.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/WithCommas.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/render/FindingLayout.hpp"
#include "tools/render/SummaryLayout.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::Finding;
using TalIec61850Analysis::Severity;
using TalIec61850Analysis::StreamKey;
using TalIec61850Analysis::StreamSummary;
using TalIec61850Analysis::SupervisionOptions;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficStream;

namespace {

std::string checkNotes() {
    auto const fields =
        listFields(fieldNames(findingLayout(true)), {{"timeNs", "nanoseconds since 1970"},
                                                     {"count", "occurrences that are one finding"},
                                                     {"position", "of the PDU, in octets"},
                                                     {"text", "a sentence"},
                                                     {"controlBlock", "as ied, with --scl alone"},
                                                     {"name", "likewise, of a member or channel"}});
    auto const figures = listFields(fieldNames(summaryLayout()),
                                    {{"jitterP50Ns", "distance from the even course"},
                                     {"smpSynch", "the lowest"},
                                     {"timeAllowedtoLiveMargin",
                                      "least of timeAllowedtoLive over the time to the next "
                                      "message"}});
    return paragraph(
               "Findings come in the order of their times. A condition that lasts is one finding; "
               "more than a hundred of a kind in a second of one stream are joined. Of what is "
               "missing, the time is that of the next packet. Who lost it is told by drop counts, "
               "by the other streams, and by the sequence numbers of HSR and PRP; where they tell "
               "nothing, the cause is unknown.") +
           "\n" +
           paragraph(
               "The window selects findings by their time. With options on streams, findings of "
               "the captures themselves are left out; all streams are witnesses all the same. "
               "--summary has a row for each stream: figures of the whole captures, and counts of "
               "the findings that are selected.") +
           "\n" +
           paragraph(std::string(kFollowNotes) +
                     " Findings are told about a second after the packet that shows them, since "
                     "what is missing may be late.") +
           "\n" + kTimeNotes + "\n" + paragraph(kClockNotes) + "\n" + paragraph(kContentNotes) +
           "\n" +
           paragraph(std::string(kNameNotes) +
                     " In texts, names have the IED in front where streams are of several.") +
           "\n" +
           paragraph("The fields of json and csv: " + fields + ". With --summary: " + figures +
                     ".");
}

/// Checks the captures of a run.
class Check {
public:
    explicit Check(CheckOptions const& options)
        : options_(options),
          run_(options.common),
          names_(run_, options.common),
          criteria_(names_.asking(options.criteria)),
          // Streams that are not selected are witnesses.
          index_(indexByOneClock(run_, {}, options.common.jobs, names_.publishers())),
          wanted_(options, criteria_, options.window.resolve(spanOf(index_))),
          counts_(index_.streams().size()) {
        reportFaults(run_, index_);
        for (auto const& capture : run_.captures()) {
            files_.push_back(capture.name);
        }
        for (TrafficStream const& stream : index_.streams()) {
            areWatched_.push_back(wanted_.isWatched(index_, stream));
        }
        names_.look(index_);
    }

    ExitStatus write() {
        supervise();
        if (options_.isSummary) {
            writeSummaries();
        } else {
            writeFindings();
        }
        if (std::none_of(areWatched_.begin(), areWatched_.end(), [](bool is) { return is; })) {
            noteNoStreams(run_, index_, criteria_, options_.common.jobs);
        }
        run_.writeSummary(lastLine());
        ExitStatus const status = run_.finish();
        return isFailure_ ? ExitStatus::findings : status;
    }

private:
    void supervise() {
        SupervisionOptions options = wanted_.supervision();
        options.layoutOf = names_.layouts(
            index_, [this](std::uint32_t file) -> std::string_view { return files_[file]; });
        if (wanted_.areStreamsSelected()) {
            options.watches = [this](StreamKey const& key) {
                auto const number = index_.find(key) - index_.streams().data();
                return areWatched_[static_cast<std::size_t>(number)];
            };
        }
        auto const take = [this](Finding const& finding) { this->take(finding); };
        try {
            if (options_.isSummary) {
                superviseTraffic(index_, options, take, [this](StreamSummary const& summary) {
                    summaries_.push_back(summary);
                });
            } else {
                superviseTraffic(index_, options, take);
            }
        } catch (std::system_error const& error) {
            run_.complainOf(files_.size() == 1 ? files_.front() : plural(files_.size(), "file"),
                            faultText(error.code()));
        }
    }

    void take(Finding const& finding) {
        if (!wanted_.isWanted(finding)) {
            ++others_;
            return;
        }
        Severity const severity = finding.severity();
        isFailure_ = isFailure_ || wanted_.failsOn(severity);
        found_.add(severity);
        if (finding.stream) {
            streams_.insert(*finding.stream);
            counts_[*finding.stream].add(severity);
        }
        if (!options_.isSummary && (!options_.limit || findings_.size() < *options_.limit)) {
            findings_.push_back(finding);
        }
    }

    void writeFindings() {
        FindingText words(index_, names_,
                          [this](std::uint32_t file) -> std::string_view { return files_[file]; });
        auto writer = run_.rowWriter(
            chooseColumns(findingLayout(names_.areGiven()), options_.common.columns));
        for (Finding const& finding : findings_) {
            writer.write({.finding = &finding,
                          .index = &index_,
                          .words = &words,
                          .files = &files_,
                          .names = &names_});
        }
        writer.finish();
    }

    void writeSummaries() {
        // In the order of `streams`.
        std::sort(summaries_.begin(), summaries_.end(),
                  [&](StreamSummary const& a, StreamSummary const& b) {
                      auto const order = [&](StreamSummary const& summary) {
                          StreamKey const& key = keyOf(summary);
                          return std::tie(key.protocol, key.destination, key.appId, key.name,
                                          key.source, key.vlans);
                      };
                      return order(a) < order(b);
                  });
        auto writer = run_.rowWriter(chooseColumns(summaryLayout(), options_.common.columns));
        std::uint64_t written = 0;
        for (StreamSummary& summary : summaries_) {
            if (options_.limit && written == *options_.limit) {
                break;
            }
            SeverityCounts const& counts = counts_[summary.stream];
            summary.errors = counts.errors;
            summary.warnings = counts.warnings;
            summary.notes = counts.notes;
            writer.write({.key = &keyOf(summary), .summary = summary});
            ++written;
        }
        writer.finish();
    }

    [[nodiscard]] StreamKey const& keyOf(StreamSummary const& summary) const {
        return index_.streams()[summary.stream].key;
    }

    /// The last line for people: what was found, or that nothing was, and in how much.
    [[nodiscard]] std::string lastLine() const {
        if (found_.all() == 0) {
            return nothingFoundLine();
        }
        std::uint64_t const more =
            options_.isSummary ? 0 : found_.all() - static_cast<std::uint64_t>(findings_.size());
        std::string const rest = more == 0 ? "" : fmt::format("; {} more not listed", more);
        return fmt::format("{}: {}, {}, {}, in {} of {}{}", plural(found_.all(), "finding"),
                           plural(found_.errors, "error"), plural(found_.warnings, "warning"),
                           plural(found_.notes, "note"), plural(streams_.size(), "stream"),
                           plural(files_.size(), "file"), rest);
    }

    [[nodiscard]] std::string nothingFoundLine() const {
        std::uint64_t streams = 0;
        std::uint64_t packets = 0;
        for (std::size_t number = 0; number < areWatched_.size(); ++number) {
            streams += areWatched_[number] ? 1 : 0;
            packets += areWatched_[number] ? index_.streams()[number].packets : 0;
        }
        std::string const others =
            others_ == 0 ? "" : fmt::format("; {} not selected", plural(others_, "other finding"));
        return fmt::format("nothing found: {} {}, {} {}{}", withCommas(streams),
                           streams == 1 ? "stream" : "streams", withCommas(packets),
                           packets == 1 ? "packet" : "packets", others);
    }

    CheckOptions const& options_;
    CommandRun run_;
    NamesOfRun names_;
    PacketCriteria criteria_;
    TrafficIndex index_;
    WantedFindings wanted_;
    std::vector<std::string> files_;
    /// By stream.
    std::vector<bool> areWatched_;
    std::vector<SeverityCounts> counts_;
    /// Those that are written.
    std::vector<Finding> findings_;
    std::vector<StreamSummary> summaries_;
    /// Those that are selected, beyond the limit too.
    SeverityCounts found_;
    std::uint64_t others_ = 0;
    /// Streams that have any.
    std::set<std::size_t> streams_;
    bool isFailure_ = false;
};

ExitStatus runCheck(CheckOptions const& options) {
    options.window.check();
    // Names of columns are wrong before captures are read.
    if (options.isSummary) {
        static_cast<void>(chooseColumns(summaryLayout(), options.common.columns));
    } else {
        static_cast<void>(chooseColumns(findingLayout(!options.common.descriptions.empty()),
                                        options.common.columns));
    }
    options.follow.check(options.common);
    checkNameOptions(options.common, options.criteria);
    if (options.follow.isOn) {
        return followCheck(options);
    }
    Check check(options);
    return check.write();
}

}  // namespace

void addCheckCommand(ProgramDefinition& program, Action& chosen) {
    auto const options = std::make_shared<CheckOptions>();
    CommandDefinition& command = addCommand(
        program, "check", "Tell what went wrong in streams and captures, and who lost packets.");
    addCheckOptions(command, *options);
    command.notes = checkNotes();
    command.examples = {"tal-iec61850 check --severity warning bay1.pcap bay2.pcap",
                        "tal-iec61850 check --summary captures/",
                        "tal-iec61850 check --follow -f json ring/",
                        "tal-iec61850 check -q --kind sampleGap --svid MU01 -f json bay1.pcap"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runCheck(*options); }; });
}

}  // namespace TalIec61850Tools
