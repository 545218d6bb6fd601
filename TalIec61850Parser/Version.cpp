#include <TalIec61850Parser/Version.hpp>

namespace TalIec61850Parser {

char const* libraryVersion() noexcept { return TALIEC61850PARSER_VERSION; }

int libraryVersionNumber() noexcept { return TALIEC61850PARSER_VERSION_NUMBER; }

}  // namespace TalIec61850Parser
