#pragma once
// Walks run on as many threads as the disk can use, usually more than the machine has cores. Their
// threads step back a little in the scheduler so that the window's thread always gets a core in
// time to answer (a long scan with the window open otherwise stalls it for 100 ms at a time).

namespace Yielding {

// Lowers the calling thread's scheduling priority once (nice +5); the process's main thread is
// never lowered.
void lowerThisThread();

}  // namespace Yielding
