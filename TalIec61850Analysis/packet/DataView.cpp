#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/packet/ReadContent.hpp>

namespace TalIec61850Analysis {

namespace {

bool holdsValues(DataKind kind) { return kind == DataKind::array || kind == DataKind::structure; }

Reading<DataView::Content> readMembers(ElementView const& element, std::size_t depth) {
    if (depth < kMaxDataDepth || element.octets.empty()) {
        return {DataViews(element.members(), depth + 1)};
    }
    return {element.octets, FaultKind::tooDeep};
}

}  // namespace

DataView viewData(ElementView const& element, std::size_t depth) noexcept {
    DataView view{.offset = element.offset,
                  .tag = element.tag.value_or(element.octets.empty() ? 0 : element.octets.front()),
                  .kind = element.tag ? kindOf(*element.tag) : DataKind::unreadable,
                  .fault = element.fault,
                  .value = element.octets};
    bool const isContainer = holdsValues(view.kind);
    if (isContainer || !element.fault) {
        auto const content =
            isContainer ? readMembers(element, depth) : readContent(view.kind, element.octets);
        view.value = content.value;
        view.fault = content.fault ? content.fault : element.fault;
    }
    return view;
}

// NOLINTNEXTLINE(misc-no-recursion): values are nested no deeper than kMaxDataDepth
void DataViews::visitFaults(FaultSink sink) const {
    for (ElementView const& element : elements_) {
        reportFault(element.offset, element.fault, sink);
        DataView const value = viewData(element, depth_);
        if (value.fault != element.fault) {
            reportFault(value.offset, value.fault, sink);
        }
        if (auto const* const members = std::get_if<DataViews>(&value.value)) {
            members->visitFaults(sink);
        }
    }
}

}  // namespace TalIec61850Analysis
