#pragma once
// Where the model's background results come back to the main thread. Every result passes through
// `land` before it touches the model, so a test can hold the results of one kind of work and let
// them land later, one by one and in any order: the races of a desktop application (a late scan,
// an early row after a restart, a listing that ends after the selection moved) become repeatable.
// Main thread only.

#include <QList>
#include <QSet>
#include <functional>

// The kinds of background work of the model.
enum class Job { scan, early, derive, expiry, removal, restore, emptying, apps, loginItems, listing, refresh, refind, details };

class Landings {
public:
    // Applies the result now, or keeps it waiting while its kind is held.
    void land(Job job, std::function<void()> apply);

    // From now on results of `job` wait until released.
    void hold(Job job);
    // Stops holding `job`; what already waits keeps waiting until released.
    void letGo(Job job);
    // Results of `job` waiting now.
    int waiting(Job job) const;
    // Applies the `nth` waiting result of `job` (0 is the oldest); false when there is none.
    bool release(Job job, int nth = 0);
    // Applies every waiting result of `job`, oldest first.
    void releaseAll(Job job);

private:
    struct Waiting {
        Job job;
        std::function<void()> apply;
    };
    QSet<Job> held_;
    QList<Waiting> waiting_;
};
