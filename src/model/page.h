#pragma once
// The pages of the window and its colour schemes, as the model knows them.

#include <QString>
#include <optional>

enum class Page { home, clean, space, apps, system, developer, login, history, settings };
enum class Appearance { system, night, paper };
// The order of the Apps page: largest first, by name, or most recently used first.
enum class AppSort { size, name, lastUsed };
// What the Storage page shows: the columns, the map of the selected folder, or both side by side.
enum class StorageMode { columns, map, both };

QString rawValue(Appearance);
std::optional<Appearance> appearanceFromRaw(const QString&);
QString rawValue(AppSort);
std::optional<AppSort> appSortFromRaw(const QString&);
QString rawValue(StorageMode);
std::optional<StorageMode> storageModeFromRaw(const QString&);
