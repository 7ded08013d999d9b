#pragma once

#include "Desktop/Query/TextFile.h"

#include <QObject>

#include <functional>

class KNSQLEditor;

/// The text of a query tab and the file that it belongs to: opening, saving, and what has to be asked before.
/// On the UI thread.
class QueryDocument : public QObject
{
    Q_OBJECT

public:
    explicit QueryDocument(KNSQLEditor *editor);

    /// False with an error when the file cannot be read; nothing has changed then.
    bool open(const QString &path, KNError *error);
    /// Null while the text was neither opened from a file nor saved to one.
    QString filePath() const { return m_file.path(); }
    /// The file's name, or the name for a text without one.
    QString title() const;
    void setUntitledName(const QString &name);
    QString untitledName() const { return m_untitledName; }
    bool isModified() const;
    /// Puts back what was there before the program ended: a text that may differ from its file's.
    void restore(const QString &path, const QString &text, bool isModified);

    /// Saves, asking for a file where there is none, and before a file is overwritten that somebody else has
    /// changed. `saved` is called when that has been done; what goes wrong is told, and the text stays.
    void save(std::function<void()> saved = {});
    void saveAs(std::function<void()> saved = {});

Q_SIGNALS:
    /// Name, file or unsaved mark have changed.
    void titleChanged();

private:
    void write(const TextFile &file, const std::function<void()> &saved);

    KNSQLEditor *const m_editor;
    TextFile m_file;
    QString m_untitledName;
};
