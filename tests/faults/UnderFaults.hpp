#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "support/WatchedHeap.hpp"

// Runs an action as often as it allocates, each time with another allocation failing.

namespace TalTest {

/// The allocation that fails, see HeapFault.
struct Fault {
    std::size_t number = 0;
    Failing failing = Failing::once;
};

/// Runs an action, which must end with std::bad_alloc if an allocation failed, and well if none.
/// @return whether an allocation failed
template <typename Action>
bool failsAsItShould(Fault const& fault, Action const& action) {
    std::string_view end = "well";
    bool wasHit = false;
    {
        HeapFault const heap(fault.number, fault.failing);
        try {
            action();
        } catch (std::bad_alloc const&) {
            end = "with std::bad_alloc";
        } catch (std::exception const&) {
            end = "with another exception";
        }
        wasHit = HeapFault::wasHit();
    }
    EXPECT_EQ(end, wasHit ? "with std::bad_alloc" : "well");
    return wasHit;
}

/// Makes attempts under one fault after the other, until one comes to its end without. None of
/// them may leave memory behind.
/// @param attempt  `bool attempt(Fault const&)`, returns whether an allocation failed
/// @return how many attempts met with a fault that stays
template <typename Attempt>
std::size_t attemptUnderEachFault(Attempt const& attempt) {
    attempt(Fault{});  // what is made on first use stays
    std::size_t number = 0;
    for (Failing const failing : {Failing::once, Failing::fromThenOn}) {
        number = 0;
        bool wasHit = true;
        while (wasHit && !testing::Test::HasFailure()) {
            ++number;
            SCOPED_TRACE("allocation " + std::to_string(number) +
                         (failing == Failing::once ? " fails" : " and all behind it fail"));
            std::size_t const before = liveAllocations();
            wasHit = attempt(Fault{.number = number, .failing = failing});
            EXPECT_EQ(liveAllocations(), before);
        }
    }
    return number - 1;
}

/// An action that gives a result in full or std::bad_alloc, and keeps no memory then.
/// @param show  makes something of the result that can be compared and printed
/// @param leastAllocations  how many it makes at least, so that there is something to fail
template <typename Action, typename Show>
void expectAllOrNothing(Action const& action, Show const& show, std::size_t leastAllocations = 1) {
    auto const expected = show(action());
    std::size_t const attempts = attemptUnderEachFault([&](Fault const& fault) {
        std::optional<decltype(action())> result;
        bool const wasHit = failsAsItShould(fault, [&] { result.emplace(action()); });
        EXPECT_EQ(result.has_value(), !wasHit);
        if (result) {
            EXPECT_EQ(show(*result), expected);
        }
        return wasHit;
    });
    EXPECT_GE(attempts, leastAllocations);
}

/// The same, where the result is something that can be compared and printed.
template <typename Action>
void expectAllOrNothing(Action const& action) {
    expectAllOrNothing(action, [](auto const& result) { return result; });
}

}  // namespace TalTest
