#pragma once
// Another file system inside a test's tree: a small tmpfs, or a file bound over another file.
// Mounting needs privileges; when it is not allowed, ok() is false and why() says so for the skip.

#include <QString>

class TestMount {
public:
    // A tmpfs of `megabytes` at `folder` (created when missing).
    static TestMount tmpfs(const QString& folder, int megabytes);
    // `source` bound over the existing file or folder `target`.
    static TestMount bind(const QString& source, const QString& target);

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
