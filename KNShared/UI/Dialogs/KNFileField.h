#pragma once

#include "UI/KNSharedUIExport.h"

#include <QWidget>

class QLineEdit;

/// A field for a file path with a button to choose the file. On the UI thread.
class KNSHAREDUI_EXPORT KNFileField : public QWidget
{
    Q_OBJECT

public:
    /// `title` describes the file to choose; `filters` as in KNFilePanels.
    explicit KNFileField(const QString &title, const QStringList &filters = {}, QWidget *parent = nullptr);

    /// Empty for no file.
    QString path() const;
    void setPath(const QString &path);
    QLineEdit *lineEdit() const { return m_path; }

private:
    QLineEdit *const m_path;
};
