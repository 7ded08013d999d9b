#pragma once

#include "UI/KNSharedUIExport.h"

#include <QByteArray>
#include <QImage>

/// An image decoded from a value. Files beyond the limits, or that are damaged, give a reason instead. Any
/// thread.
struct KNSHAREDUI_EXPORT KNValueImage
{
    static constexpr qsizetype LargestFile = 32 * 1024 * 1024; ///< bytes
    static constexpr qint64 MostPixels = 16 * 1024 * 1024;     ///< four bytes each while decoding
    static constexpr int LargestShown = 2048;                  ///< pixels of width and height

    QImage image; ///< reduced to LargestShown
    QSize size;   ///< of the original
    QString problem;

    /// The image format that the first bytes show: "png", "jpeg", "gif" or "bmp"; empty for others.
    static QByteArray formatOf(const QByteArray &firstBytes);
    /// Decodes the first image of a file of that format. Slow for large files; call it in the background.
    static KNValueImage decoded(const QByteArray &file, const QByteArray &format);
};
