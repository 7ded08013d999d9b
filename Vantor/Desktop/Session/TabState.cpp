#include "Desktop/Session/TabState.h"

#include "Desktop/Query/QueryTab.h"

KNDocumentState TabState::documentState() const
{
    QJsonObject content{{QStringLiteral("name"), untitledName},
                        {QStringLiteral("modified"), isModified},
                        {QStringLiteral("cursor"), cursor}};
    for (const auto &[key, value] :
         {std::pair(QStringLiteral("file"), filePath), std::pair(QStringLiteral("text"), text),
          std::pair(QStringLiteral("database"), database)}) {
        if (!value.isNull())
            content.insert(key, value);
    }
    return {id, QueryTab::Kind, content};
}

TabState TabState::fromDocumentState(const KNDocumentState &state)
{
    const auto text = [&](const char *key) { return state.content.value(QLatin1String(key)).toString(); };
    TabState tab;
    tab.id = state.id;
    tab.untitledName = text("name");
    tab.filePath = text("file");
    tab.text = text("text");
    tab.database = text("database");
    tab.isModified = state.content.value(QLatin1String("modified")).toBool();
    tab.cursor = state.content.value(QLatin1String("cursor")).toInteger();
    return tab;
}
