#pragma once

#include "UI/KNSharedUIExport.h"

#include <QFrame>

class KNResultEditing;
class QLabel;
class QPushButton;

/// A line below a grid with the number of changes, a note about rejected input, and buttons that apply or
/// discard them. Hidden while there is nothing to show. On the UI thread.
class KNSHAREDUI_EXPORT KNRowEditBar : public QFrame
{
    Q_OBJECT

public:
    /// The edits must outlive the bar.
    explicit KNRowEditBar(KNResultEditing &editing, QWidget *parent = nullptr);

    QString text() const;
    QPushButton *applyButton() const { return m_apply; }
    QPushButton *discardButton() const { return m_discard; }

Q_SIGNALS:
    void applyRequested();
    void discardRequested();

private:
    void update();
    void showProblem(const QString &problem);

    KNResultEditing &m_editing;
    QLabel *m_text;
    QPushButton *m_apply;
    QPushButton *m_discard;
};
