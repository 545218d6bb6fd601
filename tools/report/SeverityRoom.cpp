#include "tools/report/SeverityRoom.hpp"

#include <utility>

namespace TalIec61850Tools {

using TalIec61850Analysis::Severity;

PerSeverity<std::size_t> shareOut(PerSeverity<std::vector<std::size_t>> const& sizes,
                                  SeverityRoom const& room) {
    PerSeverity<std::size_t> chosen{};
    SeverityRoom left = room;
    auto const take = [&](Severity severity, SeverityRoom share) {
        std::size_t const place = placeOf(severity);
        std::size_t& next = chosen[place];
        while (next < sizes[place].size() && share.most > 0 &&
               sizes[place][next] <= share.mostOctets) {
            std::size_t const size = sizes[place][next];
            --share.most;
            --left.most;
            share.mostOctets -= size;
            left.mostOctets -= size;
            ++next;
        }
    };
    for (auto const& [severity, part] :
         {std::pair(Severity::error, 2U), std::pair(Severity::warning, 4U),
          std::pair(Severity::note, 4U)}) {
        take(severity, {.most = room.most / part, .mostOctets = room.mostOctets / part});
    }
    for (Severity const severity : {Severity::error, Severity::warning, Severity::note}) {
        take(severity, left);
    }
    return chosen;
}

}  // namespace TalIec61850Tools
