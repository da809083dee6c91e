#include "cli/options.h"

#include "cli/output.h"

namespace Options {

std::optional<QString> Parsed::value(const char* option) const {
    const auto it = values.find(QLatin1String(option));
    if (it == values.end()) return std::nullopt;
    return *it;
}

std::optional<Parsed> parse(const QString& verb, const QStringList& args, const Known& known, const QString& usage) {
    Parsed p;
    const auto wrong = [&](const QString& why) {
        Out::error(why + QStringLiteral(": quarle ") + usage);
        return std::nullopt;
    };
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (a == QLatin1String("--")) {
            p.operands.append(args.mid(i + 1));
            break;
        }
        if (!a.startsWith(QLatin1String("--"))) {
            p.operands.append(a);
            continue;
        }
        const qsizetype eq = a.indexOf(QLatin1Char('='));
        const QString name = eq < 0 ? a : a.left(eq);
        if (known.flags.contains(name) && eq < 0) {
            p.flags.insert(name);
        } else if (known.valued.contains(name)) {
            if (eq >= 0) {
                p.values.insert(name, a.mid(eq + 1));
            } else if (i + 1 < args.size()) {
                p.values.insert(name, args[++i]);
            } else {
                return wrong(QStringLiteral("%1 needs a value").arg(name));
            }
        } else {
            return wrong(QStringLiteral("%1 has no option \"%2\"").arg(verb, a));
        }
    }
    return p;
}

std::optional<bool> json(const QString& verb, const QStringList& args) {
    const QString usage = verb + QStringLiteral(" [--json]");
    const auto p = parse(verb, args, {{QStringLiteral("--json")}, {}}, usage);
    if (!p) return std::nullopt;
    if (!p->operands.isEmpty()) {
        Out::error(QStringLiteral("%1 takes no argument \"%2\": quarle %3").arg(verb, p->operands.first(), usage));
        return std::nullopt;
    }
    return p->has("--json");
}

}  // namespace Options
