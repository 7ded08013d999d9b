#include "UI/Connecting/KNConnectionStoreLabel.h"

#include "Foundation/KNFormat.h"
#include "Recent/SQLRecentConnectionList.h"

#include <QDir>

KNConnectionStoreLabel::KNConnectionStoreLabel(QWidget *parent)
    : QLabel(parent)
{
    constexpr double Smaller = 0.9;
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * Smaller);
    setFont(small);
    setForegroundRole(QPalette::PlaceholderText);
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setWordWrap(true);
}

void KNConnectionStoreLabel::showState(const SQLRecentConnectionList &list, const QStringList &before)
{
    QStringList lines = before;
    if (list.isLoading())
        lines.append(tr("Reading the remembered connections…"));
    else if (list.problem())
        lines.append(list.problem().localizedDescription());
    const QString store = list.storeName().replace(QDir::homePath() + u'/', QStringLiteral("~/"));
    lines.append(KNFormat(list.isStoreEncrypted() ? tr("Connections are stored in %@.")
                                                  : tr("Connections are stored in %@, not encrypted."),
                          store));
    setText(lines.join(QLatin1Char('\n')));
    if (isVisible()) // before that the width is not known
        setMinimumHeight(heightForWidth(width()));
}

void KNConnectionStoreLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    setMinimumHeight(heightForWidth(width()));
}
