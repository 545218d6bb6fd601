#pragma once

#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Scl/Export.hpp>
#include <TalIec61850Scl/match/BindMembers.hpp>
#include <TalIec61850Scl/model/DataSet.hpp>
#include <memory>
#include <optional>

namespace TalIec61850Scl {

/// Binds the messages of a stream, one after the other, and each only where its values are of
/// another make than those of the one before: other tags, nesting or widths. A message with the
/// octets of the one before costs one comparison.
class MessageBinder {
public:
    /// @param dataSet  what the messages should hold; must outlive the binder
    explicit MessageBinder(DataSet const& dataSet) noexcept : dataSet_(&dataSet) {}

    /// Goes on to a message.
    /// @param allData  what it holds
    /// @return whether it was bound anew; otherwise it binds as the one before
    TALIEC61850SCL_EXPORT bool bind(TalIec61850Analysis::DataViews const& allData);

    /// That of the message gone to last; null before the first. It stays as it is when another
    /// message is bound.
    [[nodiscard]] std::shared_ptr<MemberBinding const> const& binding() const noexcept {
        return binding_;
    }

private:
    DataSet const* dataSet_;
    std::shared_ptr<MemberBinding const> binding_;
    /// The values of the message before; not set before the first, and where one of them is damaged
    /// or was not captured.
    std::optional<TalIec61850Analysis::OctetString> before_;
};

}  // namespace TalIec61850Scl
