#pragma once
// Another file system inside a test's tree: a small tmpfs, a file bound over another file, or a
// Btrfs or XFS (with reflink) made in a sparse image file and loop-mounted.
// Mounting needs privileges; when it is not allowed, ok() is false and why() says so for the skip.

#include <QString>

class TestMount {
public:
    // A tmpfs of `megabytes` at `folder` (created when missing).
    static TestMount tmpfs(const QString& folder, int megabytes);
    // `source` bound over the existing file or folder `target`.
    static TestMount bind(const QString& source, const QString& target);
    // A 512 MiB file system of `type` ("btrfs" or "xfs") made in the file `image`, mounted at the
    // existing folder `at`.
    static TestMount loop(const QString& type, const QString& image, const QString& at);

    TestMount(TestMount&& other) noexcept;
    TestMount& operator=(TestMount&&) = delete;
    ~TestMount();

    bool ok() const { return ok_; }
    const QString& why() const { return why_; }

private:
    TestMount() = default;
    QString target_;
    bool ok_ = false;
    QString why_;
};
