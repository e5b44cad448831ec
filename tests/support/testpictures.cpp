#include "tests/support/testpictures.h"

#include <QBuffer>
#include <QFile>
#include <QPainter>

namespace {

/// An APP1 segment with nothing but the orientation tag.
QByteArray exifSegment(int orientation)
{
    QByteArray tiff("II*\0\x08\0\0\0", 8); // little endian, first directory at 8
    tiff.append("\x01\0", 2); // one entry
    tiff.append("\x12\x01\x03\0\x01\0\0\0", 8); // orientation, SHORT, count 1
    tiff.append(char(orientation));
    tiff.append("\0\0\0\0\0\0\0", 7); // rest of the value, no next directory
    const QByteArray body = QByteArray("Exif\0\0", 6) + tiff;
    const int length = int(body.size()) + 2;
    QByteArray segment("\xFF\xE1");
    segment.append(char(length >> 8));
    segment.append(char(length & 0xFF));
    return segment + body;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("cannot write %s", qUtf8Printable(path));
    }
}

} // namespace

QImage testImage(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    const QSize half(size.width() / 2 + 1, size.height() / 2 + 1);
    painter.fillRect(QRect({ 0, 0 }, half), Qt::red);
    painter.fillRect(QRect({ size.width() / 2, 0 }, half), Qt::green);
    painter.fillRect(QRect({ 0, size.height() / 2 }, half), Qt::blue);
    painter.fillRect(QRect({ size.width() / 2, size.height() / 2 }, half), Qt::yellow);
    return image;
}

QImage detailedImage(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, size.width(), size.height());
    sky.setColorAt(0, QColor(110, 160, 220));
    sky.setColorAt(1, QColor(200, 120, 60));
    painter.fillRect(image.rect(), sky);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, size.width() / 600.0));
    for (int x = 0; x < size.width(); x += size.width() / 50) {
        painter.drawLine(x, 0, size.width() - x, size.height());
    }
    return image;
}

void writeTestJpeg(const QString &path, const QSize &size, int orientation)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!testImage(size).save(&buffer, "JPEG")) {
        qFatal("no JPEG writer");
    }
    if (orientation != 1) {
        bytes.insert(2, exifSegment(orientation)); // right behind the start marker
    }
    writeFile(path, bytes);
}

void writeTransparentPng(const QString &path, const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.fillRect(QRect(0, 0, size.width() / 2, size.height()), Qt::red);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    writeFile(path, bytes);
}
