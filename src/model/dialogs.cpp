#include "model/dialogs.h"

QList<Finding> Confirm::commands() const {
    QList<Finding> out;
    for (const Finding& f : findings)
        if (f.removal.isCommand()) out.append(f);
    return out;
}
