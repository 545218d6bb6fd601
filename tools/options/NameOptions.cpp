#include "tools/options/NameOptions.hpp"

#include "tools/options/SclOption.hpp"
#include "tools/options/UsageError.hpp"

namespace TalIec61850Tools {

void addNameOptions(CommandDefinition& command, CommonOptions& common, StreamCriteria& criteria) {
    addSclOption(command, common.descriptions,
                 "Take names from a description of the station, a file or a folder");
    addIedOption(command, criteria.ieds,
                 "Streams of this IED; * is any text, ? any character; takes --scl");
}

void checkNameOptions(CommonOptions const& common, StreamCriteria const& criteria) {
    if (!criteria.ieds.empty() && common.descriptions.empty()) {
        throw UsageError("--ied goes with --scl, which tells what an IED publishes");
    }
}

}  // namespace TalIec61850Tools
