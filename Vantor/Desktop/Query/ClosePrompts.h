#pragma once

#include "Desktop/Query/QueryTab.h"

/// Asks whether what runs in the tab may be stopped, or what is open rolled back. `proceed` is called when
/// nothing is there to ask, or the user agrees.
void askAboutSession(QueryTab &tab, const std::function<void()> &proceed);
/// Asks what becomes of text that is not saved, and saves it if so wanted. Likewise.
void askAboutText(QueryTab &tab, const std::function<void()> &proceed);
