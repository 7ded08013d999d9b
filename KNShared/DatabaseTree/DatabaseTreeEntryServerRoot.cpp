#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"

KNMenuItem DatabaseTreeEntryServerRoot::disconnectMenuItem()
{
    return actionItem("Disconnect", "disconnect:", shared_from_this());
}
