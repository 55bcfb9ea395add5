// Runs test code on a new thread, whose random generator starts from its initial state.
#pragma once

#include <thread>

namespace brix::test_support {

/// Runs `action` on a new thread and waits for it: under a fixed clock the random numbers drawn
/// there (and so the condition identities) are known.
template <class Action>
void OnFreshThread(Action&& action) {
  std::thread([&] { action(); }).join();
}

}  // namespace brix::test_support
