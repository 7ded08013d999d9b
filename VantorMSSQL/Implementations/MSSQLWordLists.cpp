#include "Implementations/MSSQLWordLists.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNPropertyList.h"

#include <QCollator>
#include <QSet>

#include <algorithm>

namespace {

QStringList sortedWithoutCase(QStringList words)
{
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    const auto same = [](const QString &a, const QString &b) {
        return a.compare(b, Qt::CaseInsensitive) == 0;
    };
    std::sort(words.begin(), words.end(), collator);
    words.erase(std::unique(words.begin(), words.end(), same), words.end());
    return words;
}

QStringList wordsOfResource(const char *name)
{
    KNError error;
    const QStringList words = KNPropertyList::stringList(KNFormat(":/VantorMSSQL/%@.plist", name), &error);
    KNAssert(!error, KNFormat("Resource %@ could not be read. %@", name, error.localizedDescription()),
             QStringLiteral("Implementations/MSSQLWordLists"));
    return sortedWithoutCase(words);
}

} // namespace

const QStringList &MSSQLWordLists::keywords()
{
    static const QStringList words = wordsOfResource("MSSQLKeywords");
    return words;
}

bool MSSQLWordLists::isKeyword(const QString &word)
{
    static const QSet<QString> words = [] {
        QSet<QString> upper;
        for (const QString &keyword : keywords())
            upper.insert(keyword.toUpper());
        return upper;
    }();
    return words.contains(word.toUpper());
}

const QStringList &MSSQLWordLists::reservedWords()
{
    static const QStringList words = wordsOfResource("MSSQLReservedWords");
    return words;
}

const QStringList &MSSQLWordLists::functions()
{
    static const QStringList words = wordsOfResource("MSSQLFunctions");
    return words;
}

const QStringList &MSSQLWordLists::dataTypes()
{
    static const QStringList words = wordsOfResource("MSSQLDataTypes");
    return words;
}

const QStringList &MSSQLWordLists::functionsAndKeywords()
{
    static const QStringList words = sortedWithoutCase(keywords() + functions());
    return words;
}
