#include "model/landings.h"

void Landings::land(Job job, std::function<void()> apply) {
    if (held_.contains(job)) {
        waiting_.append({job, std::move(apply)});
        return;
    }
    apply();
}

void Landings::hold(Job job) { held_.insert(job); }

void Landings::letGo(Job job) { held_.remove(job); }

int Landings::waiting(Job job) const {
    int n = 0;
    for (const Waiting& w : waiting_) n += w.job == job;
    return n;
}

bool Landings::release(Job job, int nth) {
    for (qsizetype i = 0; i < waiting_.size(); ++i) {
        if (waiting_[i].job != job || nth-- > 0) continue;
        const std::function<void()> apply = waiting_.takeAt(i).apply;
        apply();  // may land or hold further results
        return true;
    }
    return false;
}

void Landings::releaseAll(Job job) {
    while (release(job)) {
    }
}
