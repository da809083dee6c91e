#pragma once
// A parallel loop on plain threads: body(i) for every i below `count`, each index taken once by
// whichever thread is free, all threads joined before it returns.

#include <QtGlobal>
#include <functional>

void concurrently(qsizetype count, int threads, const std::function<void(qsizetype)>& body);
