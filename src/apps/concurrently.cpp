#include "apps/concurrently.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <vector>

qsizetype concurrently(qsizetype count, int threads, const std::function<void(qsizetype)>& body) {
    std::atomic<qsizetype> next{0};
    std::atomic<qsizetype> failed{0};
    auto work = [&] {
        for (qsizetype i = next++; i < count; i = next++) {
            // An exception leaving a thread would end the program: it stays here, counted.
            try {
                body(i);
            } catch (...) {
                ++failed;
            }
        }
    };
    const qsizetype helpers = std::min<qsizetype>(std::max(threads, 1), count) - 1;
    std::vector<std::thread> pool;
    for (qsizetype t = 0; t < helpers; ++t) pool.emplace_back(work);
    work();  // the calling thread takes its share too
    for (std::thread& t : pool) t.join();
    return failed;
}
