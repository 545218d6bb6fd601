#pragma once

#include <TalIec61850Parser/store/GooseIdentifer.hpp>
#include <TalIec61850Parser/store/SvIdentifer.hpp>
#include <vector>

namespace TalIec61850Parser {

/// Which protocols and which streams a caller wants.
///
/// The lists are matched criterion by criterion, not entry by entry: a frame passes a criterion
/// when the list is empty or when some entry leaves that member unset or holds exactly the
/// frame's value, and it is wanted when it passes every criterion that it carries. So two
/// entries, one with a source address and one with a destination address, admit every frame.
/// VLAN, HSR and PRP are criteria only for frames that carry that tag or trailer. Addresses are
/// compared as text: lower-case hexadecimal pairs joined by colons.
///
/// Mind that a default `SvIdentifer` asks for APPID 0x4000; reset its `appId` to admit any.
struct Filter {
    /// False: no SV frame is wanted, whatever `svFilters` says.
    bool parseSv = true;
    /// False: no GOOSE frame is wanted, whatever `gooseFilters` says.
    bool parseGoose = true;
    /// The criteria for SV frames; none when empty.
    std::vector<TalIec61850::SvIdentifer> svFilters;
    /// The criteria for GOOSE frames; none when empty.
    std::vector<TalIec61850::GooseIdentifer> gooseFilters;
};

}  // namespace TalIec61850Parser
