#pragma once

/// How formatted SQL looks.
struct KNSQLFormatStyle
{
    enum class KeywordCase { AsTyped, Upper, Lower };

    static constexpr int LeastWidth = 40;
    static constexpr int GreatestWidth = 400;
    static constexpr int GreatestIndent = 16;

    KeywordCase keywordCase = KeywordCase::Upper;
    bool hasLeadingCommas = false; ///< commas begin a line instead of ending one
    int indent = 4;                ///< blanks for each level
    int width = 100;               ///< a clause that is longer is put on several lines

    friend bool operator==(const KNSQLFormatStyle &, const KNSQLFormatStyle &) = default;
};
