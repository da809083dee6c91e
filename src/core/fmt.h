#pragma once
// How sizes, counts, dates and paths are written everywhere. Sizes are decimal (1 KB = 1,000 bytes)
// and a list of sizes shown with its total is rounded so that the parts add up to the total shown.

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>
#include <utility>

namespace Fmt {

QString bytes(qint64 n);
// One text per value, and the total, so that gigabyte-sized parts add up to the shown total.
std::pair<QStringList, QString> parts(const QList<qint64>& values);
QString count(qint64 n, const QString& singular, const std::optional<QString>& plural = std::nullopt);
// The path with the home folder shortened to "~".
QString path(const QString& p);
QString ago(const std::optional<QDateTime>& date, const QDateTime& now);
QString day(const QDateTime& date);
// The day on which something moved to the Trash at `date` will be emptied.
QString emptyDay(const QDateTime& date, int keepDays);

}  // namespace Fmt
