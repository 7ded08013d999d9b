#include "Import/KNImportReader.h"

#include <QHash>

KNImportReader::~KNImportReader() = default;

KNError KNImportReader::fileError(const QString &text)
{
    return KNError(QStringLiteral("com.quorvex.vantor.import"), 0, text);
}

KNError KNImportReader::errorAt(quint64 line, qsizetype character, const QString &text)
{
    return fileError(character > 0 ? tr("Line %1, character %2: %3").arg(line).arg(character).arg(text)
                                   : tr("Line %1: %2").arg(line).arg(text));
}

QString KNImportReader::valueTooLarge()
{
    return tr("A value has more than %1 MB. Is a closing quote missing?").arg(LargestValue / (1024 * 1024));
}

QStringList KNImportReader::uniqueNames(const QStringList &titles)
{
    QStringList names;
    QHash<QString, int> uses; // by name without case
    for (qsizetype i = 0; i < titles.size(); ++i) {
        const QString title = titles[i].trimmed();
        const QString name = title.isEmpty() ? QStringLiteral("Column%1").arg(i + 1) : title;
        QString unique = name;
        while (uses.contains(unique.toCaseFolded()))
            unique = QStringLiteral("%1 (%2)").arg(name).arg(++uses[name.toCaseFolded()]);
        uses.insert(unique.toCaseFolded(), 1);
        names.append(unique);
    }
    return names;
}
