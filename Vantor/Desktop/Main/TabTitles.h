#pragma once

#include <QStringList>

class KNDocumentTab;

/// The titles of documents in the order of their tabs. Those of the same title are told apart by the folder
/// of their file or their database if that suffices, else by a number.
QStringList distinctTitles(const QList<KNDocumentTab *> &documents);
