#include "Foundation/KNGuidText.h"

#include <QRegularExpression>

std::optional<QString> KNGuidText::read(const QString &text)
{
    // QUuid::fromString() ignores what stands behind a GUID.
    static const QRegularExpression pattern(QRegularExpression::anchoredPattern(
        QStringLiteral("(\\{)?([0-9A-Fa-f]{8}(?:-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12})(?(1)\\})")));
    const auto match = pattern.match(text);
    return match.hasMatch() ? std::optional(match.captured(2).toUpper()) : std::nullopt;
}
