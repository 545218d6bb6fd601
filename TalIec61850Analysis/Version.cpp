#include <TalIec61850Analysis/Version.hpp>

namespace TalIec61850Analysis {

char const* libraryVersion() noexcept { return TALIEC61850ANALYSIS_VERSION; }

int libraryVersionNumber() noexcept { return TALIEC61850ANALYSIS_VERSION_NUMBER; }

}  // namespace TalIec61850Analysis
