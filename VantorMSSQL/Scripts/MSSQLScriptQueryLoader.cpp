#include "Scripts/MSSQLScriptQueryLoader.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNDispatch.h"

void MSSQLScriptQueryLoader::beginLoadingQuery(const VantorDBC &details)
{
    const auto self = std::static_pointer_cast<MSSQLScriptQueryLoader>(shared_from_this());
    KNDispatch::globalQueue([self, copy = details.copy()] {
        QString text;
        try {
            text = self->script(*copy);
        } catch (const KNAssertionFailure &) {
            // It has been logged. Whoever waits for the text is told that there is none.
        }
        self->deliver(text);
    });
}
