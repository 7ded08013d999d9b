#pragma once

#include <QStringList>

class QWidget;

/// Finds text of a server that a window would interpret as HTML instead of showing it.
namespace RichTextSearch {

/// What tests let a server send. Qt takes it for rich text wherever it is free to decide, and would load the
/// image.
inline constexpr char16_t Markup[] = u"<img src=x onerror=y><b>bold</b>";

struct Places
{
    QStringList interpreted; ///< where Qt reads the markup as HTML: each a fault
    QStringList literal;     ///< where the markup is shown as it is
};

/// Looks through a window and all its children: labels, message boxes, titles, tabs, tooltips, and the data
/// of models in every role that has a tooltip or a help text. Tooltips of items are asked for as the mouse
/// would. On the UI thread.
Places search(QWidget &window);

} // namespace RichTextSearch
