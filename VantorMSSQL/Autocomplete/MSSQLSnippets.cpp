#include "Autocomplete/MSSQLSnippets.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"
#include "SQL/Snippets/KNSnippetFile.h"

#include <QFile>

QList<KNSnippet> MSSQLSnippets::read()
{
    QFile file(QStringLiteral(":/VantorMSSQL/MSSQLSnippets.json"));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    KNError error;
    const QList<KNSnippet> snippets = KNSnippetFile::parse(file.readAll(), &error);
    KNAssert(isOpen && !error, KNFormat("The snippets could not be read. %@", error.localizedDescription()),
             QStringLiteral("Autocomplete/MSSQLSnippets"));
    return snippets;
}
