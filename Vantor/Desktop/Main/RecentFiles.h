#pragma once

#include <QObject>
#include <QStringList>

class QMenu;

/// The files that the user opened or saved last, kept in the user defaults. On the UI thread.
class RecentFiles : public QObject
{
    Q_OBJECT

public:
    static constexpr qsizetype MostFiles = 10;

    using QObject::QObject;

    /// The newest one first.
    static QStringList paths();
    static void add(const QString &path);
    static void clear();
    /// Fills the menu with the files whenever it opens.
    void show(QMenu *menu);

Q_SIGNALS:
    void openRequested(const QString &path);

private:
    void fill(QMenu *menu);
};
