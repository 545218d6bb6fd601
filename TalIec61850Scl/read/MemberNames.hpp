#pragma once

// Internal: values of data sets by their names.

#include <TalIec61850Scl/model/DataSet.hpp>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace TalIec61850Scl::detail {

/// A value: the number of its data set, and its own among the members of it.
struct MemberPlace {
    std::uint32_t dataSet = 0;
    std::uint32_t member = 0;
};

/// Finds values by their names, and by those of the objects, structures and arrays that they are
/// part of. What it is told of has to outlive it.
class MemberNames {
public:
    /// Takes in all values of a data set.
    void add(DataSet const& dataSet, std::size_t number);

    /// The first value that something has in each data set.
    /// @param name  of a value, or of something that has values
    /// @param most  how many data sets are told
    [[nodiscard]] std::vector<MemberPlace> find(std::string_view name, std::size_t most);

private:
    struct Entry {
        std::string_view name;
        MemberPlace place;
    };

    /// Where names begin that are not less.
    [[nodiscard]] std::vector<Entry>::const_iterator from(std::string_view name) const;
    void sort();

    /// By name and place, once one was looked for.
    std::vector<Entry> entries_;
    bool isSorted_ = false;
};

}  // namespace TalIec61850Scl::detail
