#include "Desktop/Main/TabTitles.h"

#include "Foundation/KNFormat.h"
#include "UI/Workspace/KNDocumentTab.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QSet>

namespace {

QString placeOf(const KNDocumentTab &document)
{
    const QString path = document.filePath();
    return path.isNull() ? document.status().database : QFileInfo(path).dir().dirName();
}

} // namespace

QStringList distinctTitles(const QList<KNDocumentTab *> &documents)
{
    QMap<QString, QList<qsizetype>> positions;
    QStringList titles;
    for (const KNDocumentTab *const document : documents) {
        positions[document->title()].append(titles.size());
        titles.append(document->title());
    }
    for (const QList<qsizetype> &same : std::as_const(positions)) {
        if (same.size() < 2)
            continue;
        QSet<QString> places;
        for (const qsizetype position : same)
            places.insert(placeOf(*documents[position]));
        const bool areDistinct = places.size() == same.size() && !places.contains(QString());
        for (qsizetype i = 0; i < same.size(); ++i) {
            QString &title = titles[same[i]];
            if (areDistinct)
                title = KNFormat("%@ — %@", title, placeOf(*documents[same[i]]));
            else if (i > 0)
                title = KNFormat("%@ (%ld)", title, i + 1);
        }
    }
    return titles;
}
