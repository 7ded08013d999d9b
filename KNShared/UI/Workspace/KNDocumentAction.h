#pragma once

/// Menu actions of a window that apply to its current document.
enum class KNDocumentAction {
    Execute,
    ExecuteBatch, ///< the batch at the cursor
    Parse,        ///< checks the syntax without running the text
    Cancel,
    Commit,   ///< ends the open transaction
    Rollback, ///< undoes the open transaction
    Reconnect,
    Save,
    SaveAs,
    Find,
    Replace,
    FindNext,
    FindPrevious,
    ToggleComment,
    CommentLines,
    UncommentLines,
    UpperCase, ///< of the selection, or of the word at the cursor
    LowerCase,
    MoveLinesUp,
    MoveLinesDown,
    Duplicate, ///< the selection, or the line of the cursor
    Rename,    ///< the alias or variable at the cursor
    Surround,  ///< puts lines of the user's choice around the selected ones
    Format,    ///< the selection, or everything if nothing is selected
    GoToLine,
    GoToDefinition, ///< of the name at the cursor
    ShowColumns,    ///< of the object that is named at the cursor
    ReloadNames,    ///< those that are completed
    ChangeDatabase, ///< asks the user for a database
    ToggleResults,  ///< shows or hides the results
    ShowNextPane,   ///< moves the keyboard focus
    ZoomIn,
    ZoomOut,
    ResetZoom,
};
