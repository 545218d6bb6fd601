#include "tools/commands/FollowCaptures.hpp"

#include <chrono>
#include <thread>
#include <utility>

namespace TalIec61850Tools {

void followCaptures(CommandRun& run, FollowOptions const& options, FollowPace pace,
                    FollowedCaptures& captures,
                    std::function<bool(std::vector<AddedTraffic>&& added)> const& take) {
    using Clock = std::chrono::steady_clock;
    std::chrono::nanoseconds interval =
        pace == FollowPace::fast ? std::chrono::milliseconds(100) : std::chrono::seconds(1);
    if (options.idle) {
        // Twice within it, so that what is held back for one call is told.
        constexpr std::chrono::nanoseconds kLeast = std::chrono::milliseconds(10);
        interval = std::max(std::min(interval, *options.idle / 2), kLeast);
    }
    auto lastAdded = Clock::now();
    while (true) {
        auto added = captures.readOn();
        for (std::string const& fault : captures.takeFaults()) {
            run.complainAbout(fault);
        }
        if (!added.empty()) {
            lastAdded = Clock::now();
        }
        bool const wantsMore = take(std::move(added));
        run.flush();
        if (!wantsMore) {
            return;
        }
        if (options.idle && Clock::now() - lastAdded >= *options.idle) {
            break;
        }
        std::this_thread::sleep_for(interval);
    }
    for (std::string const& argument : captures.unread()) {
        run.complainOf(argument, "no capture was there");
    }
}

}  // namespace TalIec61850Tools
