#include "core/fmt.h"

#include <QLocale>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <numeric>

#include "core/checked.h"
#include "core/home.h"

namespace {

// printf-style "%.Nf" with a point, whatever the locale.
QString fixed(double value, int decimals) {
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed, decimals);
    return QString::fromLatin1(buf, r.ptr - buf);
}

double roundAway(double x) { return std::round(x); }  // std::round rounds halves away from zero

QLocale groupingLocale() {
    QLocale locale;
    locale.setNumberOptions(locale.numberOptions() & ~QLocale::OmitGroupSeparator);
    return locale;
}

}  // namespace

namespace Fmt {

QString bytes(qint64 n) {
    if (n == std::numeric_limits<qint64>::min()) Checked::overflow("Fmt::bytes");
    const double a = double(n < 0 ? -n : n);
    const double v = double(n);
    if (roundAway(a / 1e9 * 10) / 10 >= 1000) return fixed(v / 1e12, 1) + QStringLiteral(" TB");
    if (roundAway(a / 1e6) >= 1000) {
        const bool whole = roundAway(a / 1e9 * 10) / 10 >= 100;
        return fixed(v / 1e9, whole ? 0 : 1) + QStringLiteral(" GB");
    }
    if (roundAway(a / 1000) >= 1000) return fixed(v / 1e6, 0) + QStringLiteral(" MB");
    if (a >= 1000) return fixed(v / 1000, 0) + QStringLiteral(" KB");
    return n == 0 ? QStringLiteral("0 KB") : QStringLiteral("1 KB");
}

std::pair<QStringList, QString> parts(const QList<qint64>& values) {
    if (values.isEmpty()) return {{}, bytes(0)};
    qint64 sum = 0;
    for (qint64 v : values) sum = Checked::add(sum, v);
    QStringList shown;
    if (sum <= 999'999'999) {
        for (qint64 v : values) shown.append(bytes(v));
        return {shown, bytes(sum)};
    }
    // Tenths of a gigabyte, rounded by the largest-remainder method.
    const qsizetype n = values.size();
    QList<double> remainder(n);
    QList<qint64> tenths(n);
    qint64 floors = 0;
    for (qsizetype i = 0; i < n; ++i) {
        const double q = double(std::max<qint64>(values[i], 0)) / 1e8;
        tenths[i] = qint64(std::floor(q));
        remainder[i] = q - double(tenths[i]);
        floors += tenths[i];
    }
    const qint64 target = qint64(roundAway(double(sum) / 1e8));
    QList<qsizetype> order(n);
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](qsizetype a, qsizetype b) { return remainder[a] > remainder[b]; });
    const qint64 deficit = target - floors;
    for (qint64 k = 0; k < deficit && k < n; ++k) ++tenths[order[k]];
    for (qsizetype i = 0; i < n; ++i)
        shown.append(tenths[i] >= 10 ? fixed(double(tenths[i]) / 10, 1) + QStringLiteral(" GB")
                                     : bytes(values[i]));
    return {shown, fixed(double(target) / 10, 1) + QStringLiteral(" GB")};
}

QString count(qint64 n, const QString& singular, const std::optional<QString>& plural) {
    const QString word = n == 1 ? singular : plural.value_or(singular + QLatin1Char('s'));
    return groupingLocale().toString(n) + QLatin1Char(' ') + word;
}

QString path(const QString& p) {
    const QString& home = Home::path();
    if (!home.isEmpty() && p.startsWith(home)) return QLatin1Char('~') + p.mid(home.size());
    return p;
}

QString ago(const std::optional<QDateTime>& date, const QDateTime& now) {
    if (!date) return QStringLiteral("never seen");
    const qint64 d = date->secsTo(now) / 86400;  // truncated toward zero
    if (d < 1) return QStringLiteral("today");
    if (d == 1) return QStringLiteral("yesterday");
    if (d <= 13) return QString::number(d) + QStringLiteral(" days ago");
    if (d <= 59) return QString::number(d / 7) + QStringLiteral(" weeks ago");
    if (d <= 729) return QString::number(d / 30) + QStringLiteral(" months ago");
    return QString::number(d / 365) + QStringLiteral(" years ago");
}

// A day in this year needs no year; any other shows it.
static QString dayFormat(const QDate& date) {
    return date.year() == QDate::currentDate().year() ? QStringLiteral("ddd d MMM") : QStringLiteral("ddd d MMM yyyy");
}

QString day(const QDateTime& date) {
    const QDateTime local = date.toLocalTime();
    if (local.date() == QDate::currentDate())
        return QLocale().toString(local, QStringLiteral("'Today' HH:mm"));
    return QLocale().toString(local, dayFormat(local.date()));
}

QString emptyDay(const QDateTime& date, int keepDays) {
    const QDateTime when = date.addSecs(qint64(keepDays) * 86400).toLocalTime();
    return QLocale().toString(when, dayFormat(when.date()));
}

}  // namespace Fmt
