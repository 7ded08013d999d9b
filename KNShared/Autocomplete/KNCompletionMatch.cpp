#include "Autocomplete/KNCompletionMatch.h"

namespace {

/// Whether a word begins at an index: behind a separator, at a capital behind a small letter, at a digit
/// behind a letter, or at the last capital of several.
bool beginsWord(QStringView name, qsizetype index)
{
    const QChar character = name[index];
    if (!character.isLetterOrNumber())
        return false;
    if (index == 0)
        return true;
    const QChar before = name[index - 1];
    if (!before.isLetterOrNumber())
        return true;
    if (character.isUpper())
        return !before.isUpper() || (index + 1 < name.size() && name[index + 1].isLower());
    return character.isDigit() && !before.isDigit();
}

/// Whether the typed text consists of beginnings of the name's words, in order.
bool matchesWords(QStringView name, QStringView typed)
{
    qsizetype matched = 0;
    bool isInWord = false;
    for (qsizetype index = 0; index < name.size() && matched < typed.size(); ++index) {
        const bool isSame = name[index].toCaseFolded() == typed[matched].toCaseFolded();
        isInWord = isSame && (isInWord || beginsWord(name, index));
        if (isInWord)
            ++matched;
    }
    return matched == typed.size();
}

} // namespace

KNCompletionMatch KNMatchCompletion(QStringView name, QStringView typed)
{
    if (name.startsWith(typed, Qt::CaseInsensitive))
        return KNCompletionMatch::Prefix;
    if (typed.size() > name.size())
        return KNCompletionMatch::None;
    if (matchesWords(name, typed))
        return KNCompletionMatch::WordStarts;
    return name.contains(typed, Qt::CaseInsensitive) ? KNCompletionMatch::Part : KNCompletionMatch::None;
}
