#pragma once
// Whether Quarle may see everything it measures. Linux has no such gate; what stands for it is
// whether the home Trash can be read, since the Trash row and slice depend on it.

#include <QString>
#include <optional>

namespace Access {

// Where the settings that grant full access are opened.
inline const QString settingsURL =
    QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles");

// True when the stand-in for ~/.Trash can be listed or does not exist yet, false when reading it is
// refused, absent when the probe cannot tell (it is not a folder, or another error).
std::optional<bool> fullDisk();
std::optional<bool> fullDisk(const QString& trashFiles);

}  // namespace Access
