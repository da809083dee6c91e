#pragma once
// What this build of Quarle is: the version from the project, and the revision of the checkout it
// was configured from (empty when built outside a git checkout, as from a source tarball).

#include <QString>

namespace BuildInfo {

QString version();
QString revision();

}  // namespace BuildInfo
