#include <TalIec61850Scl/Version.hpp>

namespace TalIec61850Scl {

char const* libraryVersion() noexcept { return TALIEC61850SCL_VERSION; }

int libraryVersionNumber() noexcept { return TALIEC61850SCL_VERSION_NUMBER; }

}  // namespace TalIec61850Scl
