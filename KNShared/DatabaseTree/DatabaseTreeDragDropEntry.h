#pragma once

/// Data of a dragged entry in addition to its text.
class DatabaseTreeDragDropEntry
{
};
