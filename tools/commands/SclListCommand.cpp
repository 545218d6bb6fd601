#include "tools/commands/SclListCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/DescribedBlocks.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/CommonOptions.hpp"
#include "tools/options/SclOption.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/ControlBlockLayout.hpp"
#include "tools/render/DescribedMemberLayout.hpp"
#include "tools/render/DiagnosticLayout.hpp"

namespace TalIec61850Tools {

using TalIec61850Scl::ControlBlock;
using TalIec61850Scl::DataSet;
using TalIec61850Scl::Diagnostic;
using TalIec61850Scl::StationDescription;

namespace {

/// The arguments of `tal-iec61850 scl list`.
struct SclListOptions {
    CommonOptions common;
    ControlBlockCriteria criteria;
    /// A row for each member of the data sets, in place of control blocks.
    bool listsMembers = false;
    /// A row for each diagnostic.
    bool listsDiagnostics = false;
};

std::string sclListNotes() {
    auto const blocks = listFields(fieldNames(controlBlockLayout()),
                                   {{"controlBlock", "its reference on the wire"},
                                    {"id", "goID or svID"},
                                    {"minTime", "milliseconds"},
                                    {"smpMod", "SmpPerPeriod, SmpPerSec, SecPerSmp"},
                                    {"members", "values in a message"},
                                    {"subscribers", "IEDs that listen"}});
    auto const members =
        listFields(fieldNames(describedMemberLayout()),
                   {{"member",
                     "3, or 9.2 for the second value inside the ninth; of SV the number of the "
                     "value, from 1"},
                    {"scale", "value x scale + offset is in the unit"}});
    auto const diagnostics = listFields(fieldNames(diagnosticLayout()), {});
    return paragraph(
               "Rows are in the order of the description. Members are all values that a message "
               "has, in its order: an FCDA of a data object is as many as its attributes with that "
               "fc. What is wrong with a description is noted on standard error, and is no reason "
               "to leave out the rest.") +
           "\n" + paragraph(kContentNotes) + "\n" +
           paragraph("The fields of json and csv: " + blocks + ". With --members: " + members +
                     ". With --diagnostics: " + diagnostics + ".");
}

/// Lists what a description says.
class SclList {
public:
    explicit SclList(SclListOptions const& options)
        : options_(options),
          run_(CommandRun::withoutCaptures(options.common)),
          descriptions_(
              run_.describe(options.common.files,
                            {.isNeeded = true, .notesDiagnostics = !options.listsDiagnostics})) {}

    ExitStatus write() {
        if (options_.listsDiagnostics) {
            writeDiagnostics();
            return run_.finish();
        }
        auto const blocks = wantedBlocks(station(), options_.criteria);
        if (options_.listsMembers) {
            writeMembers(blocks);
        } else {
            writeBlocks(blocks);
        }
        if (blocks.empty() && descriptions_.isAny) {
            noteNoBlocks(run_, station(), options_.criteria);
        }
        return run_.finish();
    }

private:
    [[nodiscard]] StationDescription const& station() const { return descriptions_.station; }

    void writeBlocks(std::vector<ControlBlock const*> const& blocks) {
        auto writer = run_.rowWriter(chooseColumns(controlBlockLayout(), options_.common.columns));
        std::uint64_t goose = 0;
        for (ControlBlock const* const block : blocks) {
            writer.write({.block = block, .station = &station()});
            goose += block->protocol == Protocol::goose ? 1 : 0;
        }
        writer.finish();
        run_.writeSummary(fmt::format("{} ({} GOOSE, {} SV) in {}",
                                      plural(blocks.size(), "control block"), goose,
                                      blocks.size() - goose, files()));
    }

    void writeMembers(std::vector<ControlBlock const*> const& blocks) {
        auto writer =
            run_.rowWriter(chooseColumns(describedMemberLayout(), options_.common.columns));
        std::uint64_t members = 0;
        for (ControlBlock const* const block : blocks) {
            if (!block->dataSet) {
                continue;
            }
            DataSet const& dataSet = station().dataSets[*block->dataSet];
            for (std::size_t number = 0; number < dataSet.members.size(); ++number) {
                writer.write({.block = block, .dataSet = &dataSet, .number = number});
            }
            members += dataSet.members.size();
        }
        writer.finish();
        run_.writeSummary(fmt::format("{} of {} in {}", plural(members, "member"),
                                      plural(blocks.size(), "control block"), files()));
    }

    void writeDiagnostics() {
        auto writer = run_.rowWriter(chooseColumns(diagnosticLayout(), options_.common.columns));
        for (Diagnostic const& diagnostic : station().diagnostics) {
            writer.write({.diagnostic = &diagnostic, .station = &station()});
        }
        writer.finish();
        run_.writeSummary(
            fmt::format("{} in {}", plural(station().diagnostics.size(), "diagnostic"), files()));
    }

    [[nodiscard]] std::string files() const { return plural(station().files.size(), "file"); }

    SclListOptions const& options_;
    CommandRun run_;
    Descriptions descriptions_;
};

ExitStatus runSclList(SclListOptions const& options) {
    if (options.listsMembers && options.listsDiagnostics) {
        throw UsageError("--members and --diagnostics are two lists: one at a time");
    }
    // Names of columns are wrong before descriptions are read.
    if (options.listsDiagnostics) {
        static_cast<void>(chooseColumns(diagnosticLayout(), options.common.columns));
    } else if (options.listsMembers) {
        static_cast<void>(chooseColumns(describedMemberLayout(), options.common.columns));
    } else {
        static_cast<void>(chooseColumns(controlBlockLayout(), options.common.columns));
    }
    SclList list(options);
    return list.write();
}

}  // namespace

void addSclListCommand(ProgramDefinition& program, CommandDefinition const& group, Action& chosen) {
    auto const options = std::make_shared<SclListOptions>();
    CommandDefinition& command =
        addCommand(program, group, "list", "List control blocks, with addresses and data sets.");
    addCommonOptions(command, options->common, kDescriptionFiles);
    command.parser->add_flag("--members", options->listsMembers,
                             "A row for each value in the messages, with its name and type");
    command.parser->add_flag("--diagnostics", options->listsDiagnostics,
                             "A row for each thing that is wrong with the description");
    addIedOption(command, options->criteria.ieds,
                 "IED that publishes; * is any text, ? any character");
    addDescribedOptions(command, options->criteria.streams);
    command.notes = sclListNotes();
    command.examples = {"tal-iec61850 scl list station.scd",
                        "tal-iec61850 scl list --members --ied 'BAY1*' -f csv station.scd",
                        "tal-iec61850 scl list --diagnostics descriptions/"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runSclList(*options); }; });
}

}  // namespace TalIec61850Tools
