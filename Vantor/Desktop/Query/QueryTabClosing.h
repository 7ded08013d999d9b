#pragma once

#include "Desktop/Query/QueryTab.h"

/// Asks what has to be asked before a tab goes, one question after the other. See QueryTab::canClose().
void askBeforeClosing(QueryTab *tab, const std::function<void(bool)> &answer);
