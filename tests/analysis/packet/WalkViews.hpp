#pragma once

// Everything that a view shows, looked at once.

#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <TalIec61850Analysis/packet/SvView.hpp>
#include <cstddef>

namespace TalTest {

/// What a walk over a view came by.
struct ViewWalk {
    std::size_t values = 0;  ///< of data sets, those with members included; or channels
    std::size_t asdus = 0;
    std::size_t others = 0;
    std::size_t faults = 0;

    void add(TalIec61850Analysis::DataViews const& views, std::size_t depth = 1);
    void add(TalIec61850Analysis::GooseView const& view);
    void add(TalIec61850Analysis::SvView const& view);

private:
    template <typename View>
    void addNotes(View const& view);
};

}  // namespace TalTest
