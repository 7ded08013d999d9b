#include "Autocomplete/MSSQLFunctionSignatures.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNPropertyList.h"

QHash<QString, KNSignature> MSSQLFunctionSignatures::read()
{
    KNError error;
    const auto texts = KNPropertyList::stringDictionary(
        QStringLiteral(":/VantorMSSQL/MSSQLFunctionSignatures.plist"), &error);
    KNAssert(!error, KNFormat("The function signatures could not be read. %@", error.localizedDescription()),
             QStringLiteral("Autocomplete/MSSQLFunctionSignatures"));
    QHash<QString, KNSignature> signatures;
    for (auto it = texts.begin(); it != texts.end(); ++it) {
        const KNSignature signature = KNSignature::from(it.key(), it.value());
        const QString name = signature.name().toUpper();
        signatures.insert(name, signature);
        if (name.startsWith(QStringLiteral("FN_")))
            signatures.insert(QStringLiteral("SYS.") + name, signature);
    }
    return signatures;
}
