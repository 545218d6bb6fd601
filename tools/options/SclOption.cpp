#include "tools/options/SclOption.hpp"

#include "tools/options/RepeatableOption.hpp"

namespace TalIec61850Tools {

namespace {

std::string asItIs(std::string const& /*option*/, std::string const& text) { return text; }

}  // namespace

void addSclOption(CommandDefinition& command, std::vector<std::string>& paths,
                  std::string const& help) {
    addRepeatable(command, "--scl", paths, "FILE", help, asItIs).group(kDescriptionGroup);
}

void addIedOption(CommandDefinition& command, std::vector<std::string>& ieds,
                  std::string const& help) {
    addRepeatable(command, "--ied", ieds, "NAME", help, asItIs).group(kDescriptionGroup);
}

}  // namespace TalIec61850Tools
