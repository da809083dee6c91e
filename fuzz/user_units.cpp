// systemd unit files with their ExecStart taken apart, and `systemctl is-enabled` answers.
#include "apps/user_units.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = fuzzBytes(data, size);
    if (const auto unit = KeyFile::parse(bytes, KeyFile::Syntax::systemdUnit)) {
        if (const auto command = UserUnits::command(*unit, QStringLiteral("/home/u"))) FUZZ_CHECK(!command->isEmpty());
    }
    const QStringList names{QStringLiteral("a.service"), QStringLiteral("b.service"), QStringLiteral("c.service")};
    const auto enabled = UserUnits::parseIsEnabled(QString::fromUtf8(bytes), names);
    for (auto it = enabled.begin(); it != enabled.end(); ++it) FUZZ_CHECK(names.contains(it.key()));
    return 0;
}
