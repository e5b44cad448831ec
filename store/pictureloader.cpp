#include "store/pictureloader.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>

using namespace Qt::StringLiterals;

namespace {

constexpr int LargestPicture = 512; // MB decoded: enough for 108 megapixels in a format that cannot reduce

/// Qt's limit is one for the whole process; it is raised only while a picture that the user has named is read.
class AllocationLimit final
{
public:
    AllocationLimit()
        : m_previous(QImageReader::allocationLimit())
    {
        QImageReader::setAllocationLimit(LargestPicture);
    }
    ~AllocationLimit() { QImageReader::setAllocationLimit(m_previous); }
    Q_DISABLE_COPY_MOVE(AllocationLimit)

private:
    int m_previous;
};

QByteArray formatByContent(QFile &file)
{
    const QByteArray start = file.peek(8);
    if (start.startsWith("\xFF\xD8\xFF")) {
        return "jpeg";
    }
    return start == QByteArrayView("\x89PNG\r\n\x1A\n") ? "png" : QByteArray();
}

/// Whether `bytes`, a JPEG file, end before the picture does. The marker that ends a thumbnail in the header does not
/// count, and whatever cameras append behind the picture does no harm.
bool endsEarly(const QByteArray &bytes)
{
    const auto byteAt = [&bytes](qsizetype at) { return quint8(bytes.at(at)); };
    qsizetype at = 2; // behind the start marker
    while (at + 3 < bytes.size()) {
        if (byteAt(at) != 0xFF) {
            return false; // not ours to judge
        }
        const quint8 marker = byteAt(at + 1);
        if (marker == 0xDA) { // here the picture's own data begin
            return bytes.indexOf("\xFF\xD9", at) < 0;
        }
        const int length = byteAt(at + 2) * 256 + byteAt(at + 3);
        at += marker == 0xFF ? 1 : 2 + length;
    }
    return true;
}

/// A cut JPEG file would be decoded into a picture with a grey lower part. To be asked before a reader has begun with
/// the file, because the position is set back to its start.
bool isCut(QFile &file, const QByteArray &format)
{
    if (format != "jpeg") {
        return false; // a cut PNG is refused when it is decoded
    }
    file.seek(file.size() - 2);
    const bool isWhole = file.read(2) == "\xFF\xD9";
    file.seek(0);
    if (isWhole) {
        return false;
    }
    const bool isEarly = endsEarly(file.readAll());
    file.seek(0);
    return isEarly;
}

/// Opens `file` and prepares `reader` for it; false when the file is no picture of ours.
bool openPicture(QFile &file, QImageReader &reader)
{
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray format = formatByContent(file);
    if (format.isEmpty()) {
        return false;
    }
    reader.setDevice(&file);
    reader.setFormat(format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    return true;
}

/// The size at which the picture, as it lies in the file, is decoded when `wanted` is asked for. JPEG decodes at a
/// half, a quarter or an eighth in a fraction of the time; scaling down once more from at least twice the wanted size
/// keeps the picture sharp, which decoding at the wanted size itself does not.
QSize decodedSize(const QImageReader &reader, const QSize &wanted)
{
    if (reader.format() != "jpeg") {
        return wanted;
    }
    const QSize stored = reader.size();
    for (const int part : { 8, 4, 2 }) {
        const QSize reduced(stored.width() / part, stored.height() / part);
        if (reduced.width() >= 2 * wanted.width() && reduced.height() >= 2 * wanted.height()) {
            return reduced;
        }
    }
    return stored;
}

bool isTurned(const QImageReader &reader)
{
    return reader.transformation() & QImageIOHandler::TransformationRotate90;
}

} // namespace

QSize fittedInto(const QSize &size, const QSize &box)
{
    if (size.isEmpty()) {
        return { 1, 1 };
    }
    if (size.boundedTo(box) == size) {
        return size;
    }
    return size.scaled(box, Qt::KeepAspectRatio).expandedTo({ 1, 1 });
}

QSize pictureSize(const QString &path)
{
    QFile file(path);
    QImageReader reader;
    if (!openPicture(file, reader)) {
        return {};
    }
    const QSize size = reader.size();
    return isTurned(reader) ? size.transposed() : size;
}

QImage loadPicture(const QString &path, const SizeChoice &choose)
{
    QFile file(path);
    QImageReader reader;
    if (!openPicture(file, reader) || isCut(file, reader.format())) {
        return {};
    }
    const QSize stored = reader.size();
    if (stored.isEmpty()) {
        return {};
    }
    const bool turned = isTurned(reader);
    const QSize wanted = choose(turned ? stored.transposed() : stored);
    reader.setScaledSize(decodedSize(reader, turned ? wanted.transposed() : wanted));
    const AllocationLimit limit;
    QImage image = reader.read();
    if (!image.isNull() && image.size() != wanted) {
        image = image.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    image.setDevicePixelRatio(1);
    return image;
}

QImage loadPicture(const QString &path, const QSize &box)
{
    return loadPicture(path, [&box](const QSize &size) { return fittedInto(size, box); });
}
