#pragma once

#include <QObject>

#include <memory>

class DocumentTabs;
class KNDocumentTab;
class QMimeData;
class QPoint;

/// Drags a tab out of its bar, to another window. On the UI thread.
class TabDrag : public QObject
{
    Q_OBJECT

public:
    explicit TabDrag(DocumentTabs *tabs);

    /// The data of a drag of this document.
    static std::unique_ptr<QMimeData> dataOf(KNDocumentTab *document);
    /// The document that is dragged; null for other data, and for a tab of another program.
    static KNDocumentTab *documentIn(const QMimeData &data);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool hasLeftBar(const QPoint &position) const;
    void drag(KNDocumentTab *document);

    DocumentTabs *const m_tabs;
    int m_pressed = -1; ///< the index of the tab under the pressed button
};
