#pragma once

#include <TalIec61850Analysis/packet/Fault.hpp>
#include <string>
#include <vector>

#include "tools/render/FaultText.hpp"

namespace TalTest {

/// The faults in words, "79 is negative".
[[nodiscard]] inline std::vector<std::string> words(TalIec61850Analysis::Faults const& faults) {
    std::vector<std::string> all;
    for (TalIec61850Analysis::Fault const& fault : faults) {
        all.push_back(std::to_string(fault.offset) + " " +
                      std::string(TalIec61850Tools::toText(fault.kind)));
    }
    return all;
}

}  // namespace TalTest
