#pragma once

#include <functional>

class KNSQLEditor;
class QKeyEvent;

/// Types brackets and quotes in pairs: an opening one brings its closing one, a closing one before its like
/// replaces it, and Backspace in an empty pair removes both. A selection is put between them. Nothing of this
/// happens in comments and strings, with several cursors, or if the preference is off. On the UI thread.
class KNPairTyping
{
public:
    /// `type` lets the editor handle the key as usual.
    KNPairTyping(KNSQLEditor &editor, const QKeyEvent &key, std::function<void()> type);

    /// Handles the key, as one undo step. False without a change if it concerns no pair.
    bool perform();

private:
    struct Pair;
    struct Context;

    static const Pair *pairOf(const QKeyEvent &key);
    Context contextAt(long position) const;
    bool typeClosing(char closing);
    bool typeOpening(const Pair &pair);
    bool wrap(const Pair &pair);
    bool removeEmptyPair();
    char byteAt(long position) const;

    KNSQLEditor &m_editor;
    const QKeyEvent &m_key;
    const std::function<void()> m_type;
    long m_caret;
};
