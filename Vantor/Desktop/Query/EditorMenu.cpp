#include "Desktop/Query/EditorMenu.h"

#include "Desktop/Query/QueryTab.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNConnectorUserInterface.h"
#include "UI/Menus/KNMenuView.h"

#include <QMenu>

void connectEditorMenu(QueryTab &tab, QObject &window, const KNConnectorUserInterface &connector,
                       const std::shared_ptr<KNDatabaseTreeContextHelper> &target)
{
    const auto addItems = [&tab, &connector, target](QMenu *menu, qsizetype location) {
        const KNMenu items = connector.editorMenu(tab.editor()->wholeText(), location,
                                                  *tab.databaseConnectionDetails(), target);
        if (items.items.empty())
            return;
        menu->addSeparator();
        KNMenuView::fill(*menu, items);
    };
    QObject::connect(tab.editor(), &KNSQLEditor::contextMenuAboutToShow, &window, addItems);
}
