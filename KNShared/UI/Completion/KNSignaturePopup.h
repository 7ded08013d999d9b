#pragma once

#include "SQL/KNSignature.h"
#include "UI/KNSharedUIExport.h"

#include <QTextLayout>
#include <QWidget>

/// Shows a signature near a line of text, with one parameter marked. It never has the focus, and texts are
/// shown literally. On the UI thread.
class KNSHAREDUI_EXPORT KNSignaturePopup : public QWidget
{
    Q_OBJECT

public:
    explicit KNSignaturePopup(QWidget *parent);

    /// Shows the signature above the line, or below it if there is no room. `parameter` is -1 for none.
    void showSignature(const KNSignature &signature, qsizetype parameter, const QRect &globalLine);
    const KNSignature &signature() const { return m_signature; }
    /// The text of the marked parameter; null if none is marked.
    QString markedParameter() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    qreal layOut(QTextLayout *layout, const QString &text, qreal top);
    void place(const QSize &size, const QRect &globalLine);

    KNSignature m_signature;
    qsizetype m_parameter = -1;
    QTextLayout m_head;
    QTextLayout m_details;
};
