#pragma once
#include <QString>
#include <QStringList>

namespace find {

// The entries of the "Look in" drop-down, each once, in this order: the
// tree's root (all volumes), the folder shown, the mounted volumes, then
// the recent locations, newest first, at most `maxRecent` of them. Folders
// are compared with their trailing separator, so "/a" and "/a/" are one.
QStringList LookInChoices(const QString& root, const QString& current, const QStringList& volumes,
                          const QStringList& recent, int maxRecent = 10);

// Puts `location` at the front of a recent list, once, keeping at most `max`.
void RememberLocation(QStringList* recent, const QString& location, int max = 10);

}  // namespace find
