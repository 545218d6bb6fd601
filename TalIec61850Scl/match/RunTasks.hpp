#pragma once

// Internal: tasks on several threads.

#include <cstddef>
#include <functional>

namespace TalIec61850Scl::detail {

/// Runs tasks, each once, some at a time; those of lower numbers begin first. Where the system has
/// no more threads, fewer do the same.
/// @param count  tasks, numbered from 0
/// @param jobs   how many run at a time; 0 for as many as the machine has cores
/// @param task   called with each number, on several threads at a time
/// @throws what the task of the lowest number throws that fails, when all have ended
void runTasks(std::size_t count, std::size_t jobs, std::function<void(std::size_t)> const& task);

}  // namespace TalIec61850Scl::detail
