#pragma once

#include "KNSharedExport.h"

#include <QList>
#include <QString>

/// The tokenizer options of an SQL dialect.
struct SQLTokenizerOptions
{
    bool hashStartsComment = false;        ///< "# ..." runs to the end of the line
    bool nestedComments = false;           ///< /* /* */ */ is one comment
    bool recognizesMSSQLVariables = false; ///< @name and @@name are variables

    friend bool operator==(const SQLTokenizerOptions &, const SQLTokenizerOptions &) = default;
};

/// The token kinds. The first four contain no names: searches for a name skip them.
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
    QStringView text; ///< points into the tokenized text, which must outlive it
};

/// Splits SQL text into tokens that cover it without gaps. Never fails: an unterminated token extends to the
/// end of the text. Linear in the text's length. Does not copy the text, which must outlive the tokenizer and
/// its tokens.
class KNSHARED_EXPORT SQLMetadataTokenizer
{
public:
    SQLMetadataTokenizer(QStringView text, const SQLTokenizerOptions &options);

    /// Reads the next token; false at the end of the text.
    bool next(SQLToken *token);
    /// Continues at `location`, which must be between two tokens.
    void seek(qsizetype location) { m_position = location; }
    /// Returns all tokens of the text.
    static QList<SQLToken> tokenize(QStringView text, const SQLTokenizerOptions &options);

private:
    qsizetype endOfToken(SQLTokenKind *kind) const;

    QStringView m_text;
    SQLTokenizerOptions m_options;
    qsizetype m_position = 0;
};
