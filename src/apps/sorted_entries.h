#pragma once
// The entries of one folder in name order: the Mac's file system lists them so, and a fixed order
// makes the ties between apps, and the order of equal sizes, the same on every run.

#include <QList>
#include <QString>

#include "measure/walk_types.h"

QList<Walker::Entry> sortedEntries(const QString& folder);
