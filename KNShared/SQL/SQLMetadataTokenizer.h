#pragma once

#include "KNSharedExport.h"

#include <QList>
#include <QString>

/// How a dialect of SQL is cut into tokens.
struct SQLTokenizerOptions
{
    bool hashStartsComment = false;        ///< "# ..." runs to the end of the line
    bool nestedComments = false;           ///< /* /* */ */ is one comment
    bool recognizesMSSQLVariables = false; ///< @name and @@name are variables

    friend bool operator==(const SQLTokenizerOptions &, const SQLTokenizerOptions &) = default;
};

/// The kinds of token. The first four hold no names: searches for a name skip them.
enum class SQLTokenKind {
    Whitespace = 1,
    LineComment = 2,
    BlockComment = 3,
    String = 4,              ///< '...' with '' inside, also N'...'
    Word = 5,                ///< identifiers and keywords, also #temp and ##temp
    QuotedIdentifier = 6,    ///< "..." with "" inside
    BracketedIdentifier = 7, ///< [...] with ]] inside
    Variable = 8,
    Number = 9, ///< 1, 1.5, .5, 1e-4, 0x0AFF, $12.50
    Operator = 10,
};

/// One token; `location` and `length` count UTF-16 units of the text.
struct SQLToken
{
    SQLTokenKind kind;
    qsizetype location;
    qsizetype length;
    QStringView text; ///< into the tokenized text, which must outlive it
};

/// Cuts SQL text into tokens that cover it without a gap. Never fails: an unterminated piece is a token to
/// the end. Linear in the text's length. Holds no copy of the text: it must outlive the tokenizer and its
/// tokens.
class KNSHARED_EXPORT SQLMetadataTokenizer
{
public:
    SQLMetadataTokenizer(QStringView text, const SQLTokenizerOptions &options);

    /// Reads the next token; false at the end of the text.
    bool next(SQLToken *token);
    /// Goes on at a place between two tokens.
    void seek(qsizetype location) { m_position = location; }
    /// Everything at once.
    static QList<SQLToken> tokenize(QStringView text, const SQLTokenizerOptions &options);

private:
    qsizetype endOfToken(SQLTokenKind *kind) const;

    QStringView m_text;
    SQLTokenizerOptions m_options;
    qsizetype m_position = 0;
};
