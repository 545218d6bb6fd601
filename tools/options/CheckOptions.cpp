#include "tools/options/CheckOptions.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>

#include "tools/options/JobsOption.hpp"
#include "tools/options/LimitOption.hpp"
#include "tools/options/NameOptions.hpp"
#include "tools/options/RepeatableOption.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/selection/FindingNames.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::Finding;
using TalIec61850Analysis::Severity;

namespace {

constexpr char const* kFindingsGroup = "Which findings";

void addKinds(CommandDefinition& command, CheckOptions& options) {
    CLI::Option& kind =
        addRepeatable(command, "--kind", options.kinds, "KIND",
                      "A kind of findings, such as sampleGap; may be given several times",
                      [](std::string const& option, std::string const& text) {
                          auto const known = findingKindOf(text);
                          if (!known) {
                              refuseValue(option, text, "a kind of findings");
                          }
                          return *known;
                      });
    kind.group(kFindingsGroup);
    allowOnly(command, kind, findingKindNames());
}

void addSeverities(CommandDefinition& command, CheckOptions& options) {
    CLI::Option& least = *command.parser->add_option_function<std::string>(
        "--severity",
        [&options](std::string const& name) {
            options.severity = severityOf(name).value_or(Severity::note);
        },
        "Findings that are at least this: note (if not said), warning or error");
    least.option_text("LEVEL")->group(kFindingsGroup);
    allowOnly(command, least, severityNames());
    CLI::Option& failOn = *command.parser->add_option_function<std::string>(
        "--fail-on", [&options](std::string const& name) { options.failOn = severityOf(name); },
        "Exit status 3 where a finding is at least this: note, warning, error (if not said), or "
        "none");
    failOn.option_text("LEVEL")->group(kFindingsGroup);
    auto levels = severityNames();
    levels.emplace_back("none");
    allowOnly(command, failOn, levels);
}

}  // namespace

bool CheckOptions::admit(Finding const& finding) const {
    return finding.severity() >= severity &&
           (kinds.empty() || std::find(kinds.begin(), kinds.end(), finding.kind) != kinds.end());
}

void addCheckOptions(CommandDefinition& command, CheckOptions& options) {
    addCommonOptions(command, options.common);
    addJobsOption(command, options.common.jobs);
    command.parser->add_flag("--summary", options.isSummary,
                             "A row for each stream, in place of findings");
    addKinds(command, options);
    addSeverities(command, options);
    addLimitOption(command, options.limit, kFindingsGroup);
    addLengthOption(command, "--jitter", options.jitter,
                    "How far a frame of SV may be from its even course, such as 50us; half an "
                    "interval of its frames if not said",
                    kFindingsGroup);
    command.parser
        ->add_flag_callback(
            "--no-samples", [&options] { options.withSamples = false; },
            "Leave out what only the ASDUs of SV tell: qualities, sizes of seqData, clocks; faster")
        ->group(kFindingsGroup);
    addFollowOptions(command, options.follow);
    addWindowOptions(command, options.window);
    addContentOptions(command, options.criteria);
    addNameOptions(command, options.common, options.criteria);
}

}  // namespace TalIec61850Tools
