#include "store/pictureloader.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>
#include <cmath>

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
    const double scale
        = std::min({ 1.0, double(box.width()) / size.width(), double(box.height()) / size.height() });
    const auto scaled = [scale](int length) { return std::max(1, int(std::lround(length * scale))); };
    return { scaled(size.width()), scaled(size.height()) };
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
    if (!openPicture(file, reader)) {
        return {};
    }
    const QSize stored = reader.size();
    if (stored.isEmpty()) {
        return {};
    }
    const bool turned = isTurned(reader);
    const QSize wanted = choose(turned ? stored.transposed() : stored);
    reader.setScaledSize(turned ? wanted.transposed() : wanted); // applies to the picture as it lies in the file
    const AllocationLimit limit;
    QImage image = reader.read();
    image.setDevicePixelRatio(1);
    return image;
}

QImage loadPicture(const QString &path, const QSize &box)
{
    return loadPicture(path, [&box](const QSize &size) { return fittedInto(size, box); });
}
