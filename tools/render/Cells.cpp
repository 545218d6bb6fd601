#include "tools/render/Cells.hpp"

namespace TalIec61850Tools {

Cell streamNameCell(StreamIdentity const& identity) {
    return identity.svID ? identity.svID : identity.gocbRef;
}

}  // namespace TalIec61850Tools
