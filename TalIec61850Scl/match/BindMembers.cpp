#include <TalIec61850Scl/match/BindMembers.hpp>
#include <algorithm>
#include <iterator>
#include <utility>
#include <variant>

namespace TalIec61850Scl {

namespace {

using TalIec61850Analysis::DataKind;
using TalIec61850Analysis::DataView;
using TalIec61850Analysis::DataViews;
using TalIec61850Analysis::FaultKind;

/// Goes through the values of a message and the members of its data set side by side.
class MemberBinder {
public:
    MemberBinder(DataSet const& dataSet, DataViews const& allData)
        : next_(dataSet.members.begin()), end_(dataSet.members.end()) {
        enter(allData, false);
    }

    MemberBinding run() {
        while (!levels_.empty()) {
            Level const& level = levels_.back();
            bool const isOver = level.value == std::default_sentinel;
            if (isOver ? !leave() : !take(*level.value)) {
                break;
            }
        }
        return std::move(binding_);
    }

private:
    /// One nesting level of the message.
    struct Level {
        DataViews::Iterator value;
        /// Whether its end was not captured.
        bool isCut = false;
    };

    void enter(DataViews const& values, bool isCut) {
        levels_.push_back({.value = values.begin(), .isCut = isCut});
        path_.push_back(0);
    }

    void goOn() {
        ++levels_.back().value;
        ++path_.back();
    }

    /// @return false where that ends the binding
    bool leave() {
        bool const isShort = next_ != end_ && startsWith(path_.size() - 1);
        if (isShort) {
            return end(levels_.back().isCut ? BindingEnd::notCaptured : BindingEnd::fewerValues,
                       next_->path, std::nullopt);
        }
        levels_.pop_back();
        path_.pop_back();
        if (!levels_.empty()) {
            goOn();
        }
        return true;
    }

    /// @return as above
    bool take(DataView const& value) {
        bool const isMembers = next_ != end_ && startsWith(path_.size());
        if (!isMembers) {
            return end(BindingEnd::moreValues, path_, value.kind);
        }
        bool const isCut = value.fault == FaultKind::pastCapture;
        if (next_->path.size() > path_.size()) {
            auto const* const inside = std::get_if<DataViews>(&value.value);
            if (inside != nullptr && value.kind == groupKind()) {
                enter(*inside, isCut);
                return true;
            }
        } else if (value.kind != DataKind::unreadable && !isCut && fits(*next_, value)) {
            ++next_;
            ++binding_.bound;
            goOn();
            return true;
        }
        return end(isCut ? BindingEnd::notCaptured : BindingEnd::otherType, path_, value.kind);
    }

    /// What the value has to be that the next member is in.
    [[nodiscard]] DataKind groupKind() const {
        return next_->isInArray(path_.size()) ? DataKind::array : DataKind::structure;
    }

    /// Whether the path of the next member starts with so many steps of the one gone.
    [[nodiscard]] bool startsWith(std::size_t steps) const {
        auto const gone = path_.begin() + static_cast<std::ptrdiff_t>(steps);
        return next_->path.size() >= steps && std::equal(path_.begin(), gone, next_->path.begin());
    }

    bool end(BindingEnd end, std::vector<std::uint32_t> const& path,
             std::optional<DataKind> found) {
        binding_.end = end;
        binding_.endPath = path;
        binding_.found = found;
        return false;
    }

    std::vector<DataSetMember>::const_iterator next_;
    std::vector<DataSetMember>::const_iterator end_;
    /// No more than kMaxDataDepth.
    std::vector<Level> levels_;
    /// Of the value, an index for each level.
    std::vector<std::uint32_t> path_;
    MemberBinding binding_;
};

}  // namespace

MemberBinding bindMembers(DataSet const& dataSet, DataViews const& allData) {
    return MemberBinder(dataSet, allData).run();
}

DataSetMember const* MemberBinding::memberAt(DataSet const& dataSet,
                                             std::span<std::uint32_t const> path) const noexcept {
    auto const isBefore = [](DataSetMember const& one, std::span<std::uint32_t const> wanted) {
        return std::lexicographical_compare(one.path.begin(), one.path.end(), wanted.begin(),
                                            wanted.end());
    };
    // Members that are bound are in the order of their paths.
    auto const first = dataSet.members.begin();
    auto const last = first + static_cast<std::ptrdiff_t>(std::min(bound, dataSet.members.size()));
    auto const member = std::lower_bound(first, last, path, isBefore);
    return member != last && std::ranges::equal(member->path, path) ? &*member : nullptr;
}

}  // namespace TalIec61850Scl
