#pragma once

namespace TalIec61850Tools {

/// What the program tells whoever started it.
enum class ExitStatus {
    success = 0,
    usageError = 1,  ///< the command line makes no sense; nothing was done
    failure = 2,     ///< something could not be read whole, or not be written; the rest was done
};

}  // namespace TalIec61850Tools
