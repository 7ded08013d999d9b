#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

/// A code page in which a column stores text: which characters it has, and how many bytes they need. A value
/// type of any thread; copies share the table of characters.
class KNSHARED_EXPORT KNCodePage
{
public:
    /// A code page that is not known.
    KNCodePage() = default;
    /// By number, such as 1252, 932 or, for UTF-8, 65001. Slow for those of several bytes; a number that this
    /// system does not have gives one that is not known.
    explicit KNCodePage(int number);

    bool isKnown() const { return m_isUtf8 || m_sizes; }
    int number() const { return m_number; }
    /// The bytes of a text; empty, with the first character that is missing, if the code page cannot hold it.
    std::optional<qsizetype> sizeOf(QStringView text, QString *missing) const;

private:
    using Sizes = std::vector<unsigned char>; ///< bytes by UTF-16 unit; 0 for a missing character

    int m_number = 0;
    bool m_isUtf8 = false;
    std::shared_ptr<const Sizes> m_sizes;
};
