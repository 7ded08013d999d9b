#include "Export/MSSQLScriptBatches.h"

#include "Implementations/MSSQLQuerySplitter.h"
#include "Implementations/MSSQLTokenizer.h"

namespace {

/// The words and names at the beginning of a batch.
QList<SQLToken> wordsOf(const QString &text)
{
    QList<SQLToken> words;
    SQLMetadataTokenizer tokenizer(text, MSSQLTokenizer::options());
    constexpr qsizetype Enough = 40;
    for (SQLToken token{}; words.size() < Enough && tokenizer.next(&token);) {
        const bool isComment =
            token.kind == SQLTokenKind::LineComment || token.kind == SQLTokenKind::BlockComment;
        if (!isComment && token.kind != SQLTokenKind::Whitespace)
            words.append(token);
    }
    return words;
}

bool is(const QList<SQLToken> &words, qsizetype index, const char *word)
{
    return index >= 0 && index < words.size() &&
           words[index].text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

qsizetype indexOf(const QList<SQLToken> &words, const char *word)
{
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (is(words, i, word))
            return i;
    }
    return -1;
}

QString nameAt(const QList<SQLToken> &words, qsizetype index)
{
    if (index < 0 || index >= words.size())
        return {};
    const SQLToken &token = words[index];
    if (token.kind == SQLTokenKind::BracketedIdentifier && token.length > 1)
        return token.text.mid(1, token.length - 2)
            .toString()
            .replace(QLatin1String("]]"), QLatin1String("]"));
    return token.text.toString();
}

bool isSettings(const QList<SQLToken> &words)
{
    return is(words, 0, "SET") &&
           (is(words, 1, "ANSI_NULLS") || is(words, 1, "QUOTED_IDENTIFIER") || is(words, 1, "ANSI_PADDING"));
}

MSSQLScriptBatches::Kind kindOf(const QList<SQLToken> &words, QString *name)
{
    const qsizetype index = indexOf(words, "INDEX");
    if (is(words, 0, "CREATE") && index > 0 && index < 5 && !is(words, 1, "TABLE") && !is(words, 1, "VIEW")) {
        *name = nameAt(words, index + 1);
        return MSSQLScriptBatches::Kind::Index;
    }
    if (is(words, 0, "ALTER") && index == 1)
        return MSSQLScriptBatches::Kind::Index;
    if (is(words, 0, "CREATE") && is(words, 1, "TRIGGER")) {
        // [schema].[name]
        *name = nameAt(words, is(words, 3, ".") ? 4 : 2);
        return MSSQLScriptBatches::Kind::Trigger;
    }
    const qsizetype trigger = indexOf(words, "TRIGGER");
    if (trigger == 1 && (is(words, 0, "DISABLE") || is(words, 0, "ENABLE")))
        return MSSQLScriptBatches::Kind::Trigger;
    if (!is(words, 0, "ALTER") || !is(words, 1, "TABLE"))
        return MSSQLScriptBatches::Kind::Object;
    if (trigger > 0 && (is(words, trigger - 1, "DISABLE") || is(words, trigger - 1, "ENABLE")))
        return MSSQLScriptBatches::Kind::Trigger;
    const qsizetype constraint = indexOf(words, "CONSTRAINT");
    if (is(words, constraint + 2, "FOREIGN") && is(words, constraint + 3, "KEY")) {
        *name = nameAt(words, constraint + 1);
        return MSSQLScriptBatches::Kind::ForeignKey;
    }
    if (is(words, constraint + 2, "CHECK")) {
        *name = nameAt(words, constraint + 1);
        return MSSQLScriptBatches::Kind::Check;
    }
    if (is(words, indexOf(words, "ADD") + 1, "CHECK"))
        return MSSQLScriptBatches::Kind::Check;
    return indexOf(words, "FOREIGN") > 0 ? MSSQLScriptBatches::Kind::ForeignKey
                                         : MSSQLScriptBatches::Kind::Object;
}

/// Whether the batch switches a constraint off or on, which does not say its kind.
bool isConstraintSwitch(const QList<SQLToken> &words)
{
    const qsizetype constraint = indexOf(words, "CONSTRAINT");
    return is(words, 0, "ALTER") && is(words, 1, "TABLE") && constraint > 0 &&
           (is(words, constraint - 1, "CHECK") || is(words, constraint - 1, "NOCHECK"));
}

} // namespace

MSSQLScriptBatches::MSSQLScriptBatches(const QString &script)
{
    MSSQLQuerySplitter splitter(MSSQLTokenizer::options());
    splitter.setRequiresFullSplit(true);
    QString settings;
    for (const KNQueryDetails &batch : splitter.doSplitQuery(script)) {
        const QList<SQLToken> words = wordsOf(batch.targetQuery);
        if (isSettings(words)) {
            settings += batch.targetQuery.trimmed() + QLatin1String("\r\nGO\r\n");
            continue;
        }
        QString name;
        const bool followsItsConstraint = isConstraintSwitch(words) && !m_batches.isEmpty();
        const Kind kind = followsItsConstraint ? m_batches.last().kind : kindOf(words, &name);
        m_batches.append({kind, settings, batch.targetQuery, name});
        settings.clear();
    }
}

QString MSSQLScriptBatches::Batch::script() const
{
    QString whole = settings + text;
    if (!whole.endsWith(QLatin1Char('\n')))
        whole += QLatin1String("\r\n");
    return whole + QLatin1String("GO\r\n");
}
