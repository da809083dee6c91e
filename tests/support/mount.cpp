#include "support/mount.h"

#include <sys/mount.h>

#include <QFile>
#include <QProcess>

#include <cerrno>
#include <cstring>

#include "support/files.h"

TestMount TestMount::tmpfs(const QString& folder, int megabytes) {
    TestMount m;
    Files::makeDirs(folder);
    const QByteArray options = "size=" + QByteArray::number(megabytes) + "m,mode=0755";
    if (::mount("tmpfs", Files::bytes(folder).constData(), "tmpfs", 0, options.constData()) != 0) {
        m.why_ = QStringLiteral("mounting a tmpfs is not allowed here: ") + QString::fromLocal8Bit(std::strerror(errno));
        return m;
    }
    m.target_ = folder;
    m.ok_ = true;
    return m;
}

TestMount TestMount::bind(const QString& source, const QString& target) {
    TestMount m;
    if (::mount(Files::bytes(source).constData(), Files::bytes(target).constData(), nullptr, MS_BIND, nullptr) != 0) {
        m.why_ = QStringLiteral("bind mounts are not allowed here: ") + QString::fromLocal8Bit(std::strerror(errno));
        return m;
    }
    m.target_ = target;
    m.ok_ = true;
    return m;
}

TestMount TestMount::loop(const QString& type, const QString& image, const QString& at) {
    const auto run = [](const QString& program, const QStringList& args) {
        QProcess p;
        p.start(program, args);
        return p.waitForFinished(120000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    };
    TestMount m;
    QFile f(image);
    const QStringList mkfs = type == "btrfs" ? QStringList{"-q", image} : QStringList{"-q", "-m", "reflink=1", image};
    if (!f.open(QIODevice::WriteOnly) || !f.resize(512 * 1024 * 1024)) m.why_ = "no room for the image";
    else if (!run("mkfs." + type, mkfs)) m.why_ = "mkfs." + type + " is missing or failed";
    else if (!run("mount", {"-o", "loop", image, at})) m.why_ = "loop mounting " + type + " is not allowed here";
    else {
        m.target_ = at;
        m.ok_ = true;
    }
    return m;
}

TestMount::TestMount(TestMount&& other) noexcept
    : target_(std::move(other.target_)), ok_(other.ok_), why_(std::move(other.why_)) {
    other.ok_ = false;
}

TestMount::~TestMount() {
    if (ok_) ::umount2(Files::bytes(target_).constData(), MNT_DETACH);
}
