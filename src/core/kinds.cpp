#include "core/kinds.h"

#include <array>

namespace {

template <typename E, std::size_t N>
std::optional<E> fromRaw(const QString& raw, const std::array<const char*, N>& names) {
    for (std::size_t i = 0; i < N; ++i)
        if (raw == QLatin1String(names[i])) return E(i);
    return std::nullopt;
}

constexpr std::array<const char*, 3> bucketRaw{"now", "call", "keep"};
constexpr std::array<const char*, 3> bucketTitle{"Clear now", "Your call", "Kept for you"};
constexpr std::array<const char*, 3> confidenceRaw{"sure", "likely", "yours"};
constexpr std::array<const char*, 3> confidenceTitle{"Sure", "Likely", "Your file"};
constexpr std::array<const char*, 9> paintRaw{"mint",   "lavender", "sky",  "peach", "pink",
                                              "butter", "aqua",     "sand", "stone"};

}  // namespace

QString rawValue(Bucket b) { return QLatin1String(bucketRaw[std::size_t(b)]); }
QString title(Bucket b) { return QLatin1String(bucketTitle[std::size_t(b)]); }
std::optional<Bucket> bucketFromRaw(const QString& s) { return fromRaw<Bucket>(s, bucketRaw); }

QString rawValue(Confidence c) { return QLatin1String(confidenceRaw[std::size_t(c)]); }
QString title(Confidence c) { return QLatin1String(confidenceTitle[std::size_t(c)]); }
std::optional<Confidence> confidenceFromRaw(const QString& s) {
    return fromRaw<Confidence>(s, confidenceRaw);
}

QString rawValue(Paint p) { return QLatin1String(paintRaw[std::size_t(p)]); }
std::optional<Paint> paintFromRaw(const QString& s) { return fromRaw<Paint>(s, paintRaw); }
