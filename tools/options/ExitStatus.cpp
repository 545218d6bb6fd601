#include "tools/options/ExitStatus.hpp"

namespace TalIec61850Tools {

std::vector<ExitStatusText> exitStatusTexts() {
    std::string const failures =
        " file is damaged, could not be read or was not found, a packet that was named is not "
        "there, or output could not be written";
    std::string const rest = "the rest was done all the same";
    return {
        {.status = ExitStatus::success, .brief = "fine", .full = "All is well."},
        {.status = ExitStatus::usageError,
         .brief = "wrong usage",
         .full = "Wrong usage: the command line makes no sense, and nothing was done."},
        {.status = ExitStatus::failure,
         .brief = "a" + failures + ": " + rest,
         .full = "A" + failures + "; that is said on standard error, and " + rest + "."},
        {.status = ExitStatus::findings,
         .brief = "check or scl check found what it fails on; this outranks 2",
         .full = "Found: check or scl check found an error, or what else it was told to fail on. "
                 "This outranks 2."}};
}

}  // namespace TalIec61850Tools
