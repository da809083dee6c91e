#include "platform/words.h"

#include <QRegularExpression>

namespace Words {

QStringList of(const QString& name) {
    static const QRegularExpression cut(QStringLiteral("[^\\p{L}\\p{N}]+|(?<=\\p{Ll})(?=\\p{Lu})"));
    QStringList out = name.split(cut, Qt::SkipEmptyParts);
    for (QString& w : out) w = w.toLower();
    return out;
}

QString squeezed(const QString& name) { return of(name).join(QString()); }

}  // namespace Words
