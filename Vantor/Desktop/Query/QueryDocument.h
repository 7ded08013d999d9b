#pragma once

#include "Desktop/Query/TextFile.h"

#include <QObject>

#include <functional>

class KNSQLEditor;

/// The text of a query tab and its file: opening, saving, and the questions before them. On the UI thread.
class QueryDocument : public QObject
{
    Q_OBJECT

public:
    explicit QueryDocument(KNSQLEditor *editor);

    /// False, with an error and without changes, if the file cannot be read.
    bool open(const QString &path, KNError *error);
    /// Null if the text was neither opened from a file nor saved to one.
    QString filePath() const { return m_file.path(); }
    /// The file's name, or the untitled document's name.
    QString title() const;
    QString encodingName() const { return m_file.encodingName(); }
    void setUntitledName(const QString &name);
    QString untitledName() const { return m_untitledName; }
    bool isModified() const;
    /// Restores the state of an earlier start; the text may differ from the file's.
    void restore(const QString &path, const QString &text, bool isModified);

    /// Saves the text. Asks for a file if the document has none, and before it overwrites a file that another
    /// program has changed. `saved` is called after success; a failure is shown to the user, and the text
    /// remains.
    void save(std::function<void()> saved = {});
    void saveAs(std::function<void()> saved = {});

Q_SIGNALS:
    /// Name, file or modified state has changed.
    void titleChanged();
    /// The text was opened from or saved to another file.
    void pathChanged(const QString &path);

private:
    void write(const TextFile &file, const std::function<void()> &saved);

    KNSQLEditor *const m_editor;
    TextFile m_file;
    QString m_untitledName;
};
