#include "tools/commands/SclSubscribersCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <string>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/DescribedBlocks.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/CommonOptions.hpp"
#include "tools/options/SclOption.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/SubscriberLayout.hpp"

namespace TalIec61850Tools {

using TalIec61850Scl::ControlBlock;
using TalIec61850Scl::Subscriber;

namespace {

/// The arguments of `tal-iec61850 scl subscribers`.
struct SclSubscribersOptions {
    CommonOptions common;
    ControlBlockCriteria criteria;
};

std::string sclSubscribersNotes() {
    auto const fields =
        listFields(fieldNames(subscriberLayout()),
                   {{"publisher", "IED"},
                    {"subscriber", "IED"},
                    {"node", "the logical node that listens"},
                    {"member", "as in scl list --members; null where all are taken"},
                    {"source",
                     "controlBlock: an ExtRef names it; data: an ExtRef names data that it sends; "
                     "iedName: the control block names the IED"}});
    return paragraph(
               "A row for each subscription, by control blocks in the order of the description. "
               "Those to data that no control block sends, and to control blocks that are not "
               "there, are noted: scl list --diagnostics.") +
           "\n" + paragraph(kContentNotes) + "\n" +
           paragraph("The fields of json and csv: " + fields + ".");
}

ExitStatus runSclSubscribers(SclSubscribersOptions const& options) {
    auto const layout = chooseColumns(subscriberLayout(), options.common.columns);
    CommandRun run = CommandRun::withoutCaptures(options.common);
    Descriptions const descriptions = run.describe(options.common.files, {.isNeeded = true});
    ControlBlockCriteria const& criteria = options.criteria;
    auto writer = run.rowWriter(layout);
    std::uint64_t rows = 0;
    std::uint64_t blocks = 0;
    std::uint64_t unheard = 0;
    for (ControlBlock const& block : descriptions.station.controlBlocks) {
        if (!criteria.admitDescribed(block)) {
            continue;
        }
        bool const isPublisher = criteria.admitIed(block.ied);
        std::uint64_t const before = rows;
        for (Subscriber const& subscriber : block.subscribers) {
            if (isPublisher || criteria.admitIed(subscriber.ied)) {
                writer.write(
                    {.block = &block, .subscriber = &subscriber, .station = &descriptions.station});
                ++rows;
            }
        }
        blocks += rows == before ? 0 : 1;
        unheard += isPublisher && block.subscribers.empty() ? 1 : 0;
    }
    writer.finish();
    if (blocks == 0 && unheard == 0 && descriptions.isAny) {
        noteNoBlocks(run, descriptions.station, criteria);
    }
    run.writeSummary(fmt::format("{} to {}; {} without a subscriber", plural(rows, "subscription"),
                                 plural(blocks, "control block"), unheard));
    return run.finish();
}

}  // namespace

void addSclSubscribersCommand(ProgramDefinition& program, CommandDefinition const& group,
                              Action& chosen) {
    auto const options = std::make_shared<SclSubscribersOptions>();
    CommandDefinition& command =
        addCommand(program, group, "subscribers", "List who listens to which control block.");
    addCommonOptions(command, options->common, kDescriptionFiles);
    addIedOption(command, options->criteria.ieds,
                 "IED that publishes or listens; * is any text, ? any character");
    addDescribedOptions(command, options->criteria.streams);
    command.notes = sclSubscribersNotes();
    command.examples = {"tal-iec61850 scl subscribers station.scd",
                        "tal-iec61850 scl subscribers --ied BAY1_PROT -f json station.scd"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runSclSubscribers(*options); }; });
}

}  // namespace TalIec61850Tools
