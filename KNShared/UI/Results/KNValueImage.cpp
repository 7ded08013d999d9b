#include "UI/Results/KNValueImage.h"

#include "Foundation/KNFormat.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QImageReader>
#include <QtEndian>

namespace {

constexpr int AllocationLimit = 128; // MB, for one image

/// A bitmap has no more than two letters as a mark: its header must have a known size, too.
bool isBitmap(const QByteArray &bytes)
{
    if (!bytes.startsWith("BM") || bytes.size() < 18)
        return false;
    const auto headerSize = qFromLittleEndian<quint32>(bytes.constData() + 14);
    return headerSize == 12 || (headerSize >= 40 && headerSize <= 124);
}

} // namespace

QByteArray KNValueImage::formatOf(const QByteArray &firstBytes)
{
    if (firstBytes.startsWith("\x89PNG\r\n\x1a\n"))
        return "png";
    if (firstBytes.startsWith("\xff\xd8\xff"))
        return "jpeg";
    if (firstBytes.startsWith("GIF87a") || firstBytes.startsWith("GIF89a"))
        return "gif";
    return isBitmap(firstBytes) ? QByteArray("bmp") : QByteArray();
}

KNValueImage KNValueImage::decoded(const QByteArray &file, const QByteArray &format)
{
    KNValueImage result;
    QImageReader::setAllocationLimit(AllocationLimit);
    QBuffer buffer;
    buffer.setData(file);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, format);
    // Only the format that was recognised: other readers need not see the bytes.
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    result.size = reader.size();
    if (file.size() > LargestFile) {
        result.problem = KNFormat(
            QCoreApplication::translate("KNValueImage", "The image is not shown: it has more than %lld MB."),
            LargestFile >> 20);
    } else if (qint64{result.size.width()} * result.size.height() > MostPixels) {
        result.problem = KNFormat(QCoreApplication::translate(
                                      "KNValueImage", "The image is not shown: %d × %d pixels are too many."),
                                  result.size.width(), result.size.height());
    } else if (!reader.read(&result.image)) {
        result.problem =
            KNFormat(QCoreApplication::translate("KNValueImage", "The image cannot be shown: %@."),
                     reader.errorString());
    }
    if (!result.problem.isEmpty()) {
        result.image = QImage(); // a part of it may have been read
        return result;
    }
    result.size = result.image.size();
    if (result.size.width() > LargestShown || result.size.height() > LargestShown)
        result.image =
            result.image.scaled(LargestShown, LargestShown, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    result.image.convertTo(QImage::Format_ARGB32_Premultiplied); // what the screen needs
    return result;
}
