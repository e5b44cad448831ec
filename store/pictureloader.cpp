#include "store/pictureloader.h"

#include "store/areaaverage.h"
#include "store/jpegmemory.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QTransform>

#include <algorithm>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int LargestPicture = 512; // MB decoded: enough for 108 megapixels in a format that cannot reduce
constexpr qint64 SmallestFile = 8; // bytes
constexpr qint64 LargestFile = 512LL * 1024 * 1024; // bytes, of which no photograph needs a half
constexpr qint64 BufferedFile = 64LL * 1024 * 1024; // bytes
constexpr int LargestStep = 256; // pixels that areaAverage() makes one of
constexpr qint64 QuicklyDecoded = 30'000'000; // pixels, where a small picture takes as long as a large one

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

/// A picture file and its reader, which needs the file as long as it lives.
struct Source
{
    explicit Source(const QString &path)
        : file(path)
    { }

    QFile file;
    QBuffer bytes; // of the whole file, once it is worth decoding
    QImageReader reader;
    std::optional<JpegHeader> jpeg; // of a JPEG file
};

QByteArray formatByContent(QFile &file)
{
    const QByteArray start = file.peek(8);
    if (start.startsWith("\xFF\xD8\xFF")) {
        return "jpeg";
    }
    return start == QByteArrayView("\x89PNG\r\n\x1A\n") ? "png" : QByteArray();
}

/// Opens the file and prepares its reader; false when the file is no picture of ours.
bool openPicture(Source &source)
{
    QFile &file = source.file;
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray format = formatByContent(file);
    if (format.isEmpty() || file.size() < SmallestFile || file.size() > LargestFile) {
        return false;
    }
    if (format == "jpeg") {
        source.jpeg = readJpegHeader(file);
        file.seek(0);
        if (!source.jpeg) {
            return false;
        }
    }
    source.reader.setDevice(&file);
    source.reader.setFormat(format);
    source.reader.setAutoDetectImageFormat(false);
    source.reader.setAutoTransform(true);
    return true;
}

/// Lets the reader take the bytes from memory: that is quicker than asking the file for each few thousand of them. A
/// file that is decoded with all of it in memory leaves no room for its bytes, too.
void readWholeFile(Source &source)
{
    if (source.jpeg && source.jpeg->memory == 0 && source.file.size() <= BufferedFile) {
        source.bytes.setData(source.file.readAll());
        source.bytes.open(QIODevice::ReadOnly);
        source.reader.setDevice(&source.bytes);
    }
}

/// At what part of its size a JPEG file is decoded; the eighths between take longer than the next larger of these. The
/// decoder's eighths are averages of 8 x 8 pixels. Its quarters and halves are only nearly averages, which is not seen
/// any more where enough of them are averaged to one pixel; and the more there are, the less it matters where the edge
/// of a wanted pixel cuts through them.
int partFor(const QSize &stored, const QSize &wanted, Reduction reduction)
{
    constexpr double LeastStep = 2.7;
    for (const int part : { 8, 4, 2 }) {
        const QSizeF decoded = QSizeF(stored) / part;
        const double step = std::min(decoded.width() / wanted.width(), decoded.height() / wanted.height());
        const bool isAverage = step >= LeastStep || (part == 8 && decoded == QSizeF(wanted));
        const bool covers = wanted.boundedTo(stored / part) == wanted;
        if (reduction == Reduction::Sharp ? isAverage : covers) {
            return part;
        }
    }
    return 1;
}

/// The decoder rounds its sizes up. Asked for any other size, Qt would scale once more by a fraction of a pixel; so the
/// picture is made larger to a multiple of the part first.
void decodeReduced(QImageReader &reader, const QSize &stored, int part)
{
    if (part > 1) {
        const QSize reduced((stored.width() + part - 1) / part, (stored.height() + part - 1) / part);
        reader.setClipRect({ QPoint(), reduced * part });
        reader.setScaledSize(reduced);
    }
}

/// What QImageReader does of itself unless told not to.
QImage turned(const QImage &image, QImageIOHandler::Transformations turn)
{
    const QImage mirrored
        = image.mirrored(turn & QImageIOHandler::TransformationMirror, turn & QImageIOHandler::TransformationFlip);
    const bool isQuarter = turn & QImageIOHandler::TransformationRotate90;
    return isQuarter ? mirrored.transformed(QTransform().rotate(90)) : mirrored;
}

/// A JPEG file at `wanted`, a size before turning: what the decoder leaves hardly covered lies at the right and the
/// lower edge only as long as nothing is turned.
QImage readSharp(QImageReader &reader, const QSize &stored, const QSize &wanted)
{
    const int part = partFor(stored, wanted, Reduction::Sharp);
    decodeReduced(reader, stored, part);
    reader.setAutoTransform(false);
    const QImageIOHandler::Transformations turn = reader.transformation();
    QImage image = reader.read();
    const QSizeF covered = QSizeF(stored) / part;
    const bool isEnlarged = wanted.boundedTo(stored) != wanted;
    const double step = std::max(covered.width() / wanted.width(), covered.height() / wanted.height());
    if (!image.isNull() && !isEnlarged && step <= LargestStep && covered != QSizeF(wanted)) {
        image = areaAverage(std::move(image), covered, wanted);
    }
    return turned(image, turn);
}

/// A JPEG file decoded as small as will do, at `wanted` or a little larger.
QImage readQuickly(QImageReader &reader, const QSize &stored, const QSize &wanted)
{
    const int part = partFor(stored, wanted, Reduction::Quick);
    decodeReduced(reader, stored, part);
    if (part > 1) {
        reader.setScaledClipRect({ QPoint(), (QSizeF(stored) / part).toSize() }); // without what is hardly covered
    }
    return reader.read();
}

QImage readAt(Source &source, const QSize &stored, const QSize &wanted, Reduction reduction)
{
    if (!source.jpeg) {
        source.reader.setScaledSize(wanted);
        return source.reader.read();
    }
    return reduction == Reduction::Sharp ? readSharp(source.reader, stored, wanted)
                                         : readQuickly(source.reader, stored, wanted);
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
    Source source(path);
    if (!openPicture(source)) {
        return {};
    }
    const QSize size = source.reader.size();
    return isTurned(source.reader) ? size.transposed() : size;
}

bool isSlowToRead(const QString &path)
{
    Source source(path);
    if (!openPicture(source)) {
        return false;
    }
    const bool isReduced = source.jpeg && source.jpeg->memory == 0;
    const QSize size = source.reader.size();
    return !isReduced && qint64(size.width()) * size.height() > QuicklyDecoded;
}

QImage loadPicture(const QString &path, const SizeChoice &choose, Reduction reduction)
{
    Source source(path);
    // A cut JPEG file would be decoded into a picture with a grey lower part; a cut PNG file is refused by the decoder.
    if (!openPicture(source) || (source.jpeg && !isWorthDecoding(source.file, *source.jpeg))) {
        return {};
    }
    readWholeFile(source);
    QImageReader &reader = source.reader;
    const QSize stored = reader.size();
    if (stored.isEmpty()) {
        return {};
    }
    const bool turned = isTurned(reader);
    const QSize wanted = choose(turned ? stored.transposed() : stored);
    const QSize wantedStored = turned ? wanted.transposed() : wanted;
    const AllocationLimit limit;
    QImage image = readAt(source, stored, wantedStored, reduction);
    if (!image.isNull() && image.size() != wanted) {
        image = image.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    image.setDevicePixelRatio(1);
    return image;
}

QImage loadPicture(const QString &path, const QSize &box)
{
    return loadPicture(
        path, [&box](const QSize &size) { return fittedInto(size, box); }, Reduction::Sharp);
}
