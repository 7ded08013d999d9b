#pragma once

/// What a drag of an entry carries beside its text.
class DatabaseTreeDragDropEntry
{
};
