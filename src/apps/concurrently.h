#pragma once
// A parallel loop on plain threads: body(i) for every i below `count`, each index taken once by
// whichever thread is free, all threads joined before it returns. A body that throws stops only its
// own index; the count of those comes back.

#include <QtGlobal>
#include <functional>

qsizetype concurrently(qsizetype count, int threads, const std::function<void(qsizetype)>& body);
