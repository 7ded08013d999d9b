#pragma once

#include "UI/Import/KNImportWindowController.h"
#include "UI/Workspace/KNDocumentTab.h"
#include "UI/Workspace/KNWorkspace.h"

#include <QObject>
#include <QPointer>

class KNConnectorUserInterface;
class KNDatabaseTreeContextHelper;

/// Opens the import wizard: from the tree, from the File menu, and for a file that is dropped on the window.
/// On the UI thread.
class ImportActions : public QObject
{
    Q_OBJECT

public:
    /// Returns the document in front; null if there is none.
    using CurrentDocument = std::function<KNDocumentTab *()>;

    /// Adds the tree's action to the helper. `connector` creates new tables; null for none. The window, which
    /// is the workspace, outlives this object.
    ImportActions(QWidget &window, KNWorkspace &workspace, KNDatabaseTreeContextHelper &helper,
                  const KNConnectorUserInterface *connector, CurrentDocument currentDocument);

    /// Opens the wizard for the database of the tree's selection, otherwise for that of the current document;
    /// a null path asks for the file. The tree's selected table is proposed.
    void import(const QString &path = {});

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void open(const KNWorkspace::TreeEntry &entry, const KNWorkspace::Settings &settings,
              const QString &path);
    KNImportTargetPage::CreateTable tableCreator(const KNWorkspace::Settings &settings);

    QWidget &m_window;
    KNWorkspace &m_workspace;
    const KNConnectorUserInterface *const m_connector; ///< may be null
    const CurrentDocument m_currentDocument;
    QPointer<KNImportWindowController> m_wizard; ///< while it is open
};
