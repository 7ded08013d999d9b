#pragma once

#include <QStringList>

/// The words of T-SQL, from the connector's resources. Sorted without regard to case; each word occurs once.
/// Any thread.
namespace MSSQLWordLists {

const QStringList &keywords();
/// Whether a word is one of them, in any case.
bool isKeyword(const QString &word);
/// The keywords that cannot be names without brackets in any version from 2000 on.
const QStringList &reservedWords();
const QStringList &functions();
const QStringList &dataTypes();
const QStringList &functionsAndKeywords();

} // namespace MSSQLWordLists
