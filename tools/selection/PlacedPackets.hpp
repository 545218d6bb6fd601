#pragma once

#include <TalIec61850Parser/store/Package.hpp>

namespace TalIec61850Tools {

/// Whether the library found where the packet's PDU begins. Others have neither position nor time.
[[nodiscard]] inline bool isPlaced(TalIec61850Parser::Package const& package) {
    return package.position != 0;
}

}  // namespace TalIec61850Tools
