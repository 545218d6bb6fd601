#pragma once

#include <string>
#include <vector>

namespace TalIec61850Tools {

/// The exit status of the program.
enum class ExitStatus {
    success = 0,
    usageError = 1,  ///< the command line makes no sense; nothing was done
    failure = 2,     ///< something could not be read whole, or not be written; the rest was done
    findings = 3,    ///< what was asked to fail on was found; this outranks a failure
};

/// An exit status in words.
struct ExitStatusText {
    ExitStatus status = ExitStatus::success;
    /// A clause, for the help of a command.
    std::string brief;
    /// Sentences, for the manual page.
    std::string full;
};

/// Every exit status, in the order of the numbers.
[[nodiscard]] std::vector<ExitStatusText> exitStatusTexts();

}  // namespace TalIec61850Tools
