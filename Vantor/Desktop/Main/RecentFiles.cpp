#include "Desktop/Main/RecentFiles.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNUserDefaults.h"
#include "UI/KNPlainToolTip.h"

#include <QDir>
#include <QFileInfo>
#include <QMenu>

namespace {

const QString Key = QStringLiteral("RecentFiles");

} // namespace

QStringList RecentFiles::paths()
{
    return KNUserDefaults::standardUserDefaults()->objectForKey(Key).toStringList().mid(0, MostFiles);
}

void RecentFiles::add(const QString &path)
{
    QStringList files = paths();
    if (path.isEmpty() || files.value(0) == path)
        return;
    files.removeAll(path);
    files.prepend(path);
    KNUserDefaults::standardUserDefaults()->setObject(Key, files.mid(0, MostFiles));
}

void RecentFiles::clear()
{
    KNUserDefaults::standardUserDefaults()->removeObject(Key);
}

void RecentFiles::show(QMenu *menu)
{
    menu->setToolTipsVisible(true);
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { fill(menu); });
    fill(menu);
}

void RecentFiles::fill(QMenu *menu)
{
    menu->clear();
    const QStringList files = paths();
    for (const QString &path : files) {
        QString name = QFileInfo(path).fileName();
        name.replace(u'&', QStringLiteral("&&"));
        QAction *const action = menu->addAction(name, this, [this, path] { Q_EMIT openRequested(path); });
        action->setToolTip(KNPlainToolTip(QDir::toNativeSeparators(path)));
    }
    if (files.isEmpty())
        menu->addAction(tr("No Recent Files"))->setEnabled(false);
    menu->addSeparator();
    menu->addAction(tr("&Clear Recent Files"), this, &RecentFiles::clear)->setEnabled(!files.isEmpty());
}
