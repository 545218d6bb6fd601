#pragma once

#include <concepts>
#include <memory>
#include <type_traits>

namespace TalIec61850Analysis {

/// What something is handed to, item by item: a callable that it refers to and does not own.
/// Nothing is allocated. To be passed, not to be kept.
template <typename Item>
class Sink {
public:
    /// @param call  called with each item; must outlive the sink
    template <typename Call>
    requires(!std::same_as<std::remove_cvref_t<Call>, Sink> && std::invocable<Call&, Item const&>)
        Sink(Call&& call)
    noexcept  // NOLINT(bugprone-forwarding-reference-overload)
        : target_(const_cast<void*>(static_cast<void const*>(std::addressof(call)))),
          call_([](void* target, Item const& item) {
              (*static_cast<std::remove_reference_t<Call>*>(target))(item);
          }) {}

    /// Hands on an item.
    void operator()(Item const& item) const { call_(target_, item); }

private:
    void* target_;
    void (*call_)(void*, Item const&);
};

}  // namespace TalIec61850Analysis
