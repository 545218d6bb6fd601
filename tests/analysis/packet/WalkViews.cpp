#include "analysis/packet/WalkViews.hpp"

#include <stdexcept>

namespace TalTest {

using namespace TalIec61850Analysis;

template <typename View>
void ViewWalk::addNotes(View const& view) {
    view.visitOthers([this](ElementView const&) { ++others; });
    view.visitFaults([this](Fault const&) { ++faults; });
}

void ViewWalk::add(DataViews const& views, std::size_t depth) {
    if (depth > kMaxDataDepth + 1) throw std::logic_error("values are nested too deep");
    for (DataView const& value : views) {
        ++values;
        if (auto const* const members = std::get_if<DataViews>(&value.value)) {
            add(*members, depth + 1);
        }
    }
}

void ViewWalk::add(GooseView const& view) {
    if (view.allData) add(*view.allData);
    addNotes(view);
}

void ViewWalk::add(SvView const& view) {
    for (AsduView const& asdu : view.asdus) {
        ++asdus;
        values += asdu.seqData ? asdu.seqData->size() : 0;
        asdu.visitOthers([this](ElementView const&) { ++others; });
    }
    addNotes(view);
}

}  // namespace TalTest
