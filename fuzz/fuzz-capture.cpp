// A whole capture file, indexed under a filter made from the input: by both lanes, and now and then
// by the plain index of the tests; all end with one store.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/CaptureInput.hpp"
#include "fuzz/Check.hpp"
#include "fuzz/FilterChoice.hpp"
#include "fuzz/Tally.hpp"
#include "index/Indexing.hpp"
#include "index/PlainIndex.hpp"
#include "lanes/BothLanes.hpp"

namespace {

using namespace TalIec61850Parser;
using namespace TalTest;
using namespace TalFuzz;

/// The filter that the input chooses; most choose none.
Filter filterOf(Bytes const& choice, std::string const& path) {
    if (choice == Bytes(kFilterChoiceSize)) return {};
    Db unfiltered;
    indexInto(unfiltered, path);
    FuzzInput input(choice);
    return filterFrom(input, unfiltered);
}

void requireThePlainIndex(ScratchFile const& file, Bytes const& capture, Filter const& filter) {
    PlainIndex plain;
    plain.add(file.path(), capture, filter);
    requireNone(difference(libraryImage({file.path()}, filter), plain.image()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Tally indexed("captures have packets");
    static Tally remembered("records are not walked by the fast lane");
    static ScratchFile file;
    muteErrors();
    CaptureInput const input = captureInput({data, size});
    Bytes const capture = withoutLongClaim(input.capture);
    file.assign(capture);
    Filter const filter = filterOf(input.filterChoice, file.path());
    LaneOutcome const outcome = indexByBothLanes(file.path(), {.filter = filter, .progress = {}});
    requireNone(outcome.difference);
    bool const isEighth = (capture.size() + outcome.records) % 8 == 0;  // it takes its time
    if (isEighth || outcome.records == 0) requireThePlainIndex(file, capture, filter);
    indexed.add(outcome.packets == 0 ? 0 : 1, 1);
    remembered.add(outcome.remembered, outcome.records);
    return 0;
}
