#pragma once

#include <concepts>
#include <memory>
#include <type_traits>

namespace TalIec61850Analysis {

template <typename Item>
class Sink;

/// What a sink can be made of: a callable that takes an item, and is no sink.
template <typename Call, typename Item>
concept SinkCall =
    std::invocable<Call&, Item const&> && !std::same_as<std::remove_cvref_t<Call>, Sink<Item>>;

/// What something is handed to, item by item: a callable that it refers to and does not own.
/// Nothing is allocated. To be passed, not to be kept.
template <typename Item>
class Sink {
public:
    /// @param call  called with each item; must outlive the sink
    template <SinkCall<Item> Call>
    // NOLINTNEXTLINE(bugprone-forwarding-reference-overload): SinkCall excludes sinks
    Sink(Call&& call) noexcept
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
