#pragma once

class DocumentTabs;
class KNDocumentTab;
class QMenu;

/// Fills the context menu of a document's tab.
void fillDocumentTabMenu(QMenu &menu, DocumentTabs &tabs, KNDocumentTab &document);
