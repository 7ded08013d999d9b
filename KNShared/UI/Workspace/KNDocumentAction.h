#pragma once

/// The actions of a window's menus that work on the document in front.
enum class KNDocumentAction {
    Execute,
    ExecuteBatch, ///< the batch at the cursor
    Cancel,
    Save,
    SaveAs,
    Find,
    Replace,
    FindNext,
    FindPrevious,
    ToggleComment,
    CommentLines,
    UncommentLines,
    GoToLine,
    ChangeDatabase, ///< lets the user choose one
    ToggleResults,  ///< shows or hides the results
    ShowNextPane,   ///< moves the focus
    ZoomIn,
    ZoomOut,
    ResetZoom,
};
