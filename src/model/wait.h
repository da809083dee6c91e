#pragma once
// Waiting on the main thread for the model to say that something is done: the event loop runs
// (background results land, timers fire) until the condition holds. For the command line, which
// drives the model as the window does, and for tests.

#include <chrono>
#include <functional>

namespace ModelWait {

// Runs the event loop until `done()` is true, re-checking after every event; false when `limit`
// passed first.
bool until(const std::function<bool()>& done, std::chrono::milliseconds limit = std::chrono::hours(24));

}  // namespace ModelWait
