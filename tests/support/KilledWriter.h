#pragma once

#include <functional>

namespace quillet::testing {

// Runs writeOne(0), writeOne(1), ... in a forked child process that reports
// each write on a pipe once writeOne has returned (the write is committed),
// kills the child with SIGKILL after it has reported at least `atLeast`, and
// returns how many writes it reported before it died. A store's test then
// checks that every reported write is there: a killed process loses nothing
// it committed. Call with no other threads of the test running.
int killWriterAfter(int atLeast, const std::function<void(int)>& writeOne);

}  // namespace quillet::testing
