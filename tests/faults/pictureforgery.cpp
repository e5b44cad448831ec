#include "tests/faults/pictureforgery.h"

#include "tests/support/testpictures.h"

#include <QBuffer>
#include <QImageWriter>
#include <QTemporaryFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// 16 x 12 pixels in cyan, magenta, yellow and black, which Qt reads but cannot write.
const char *const CmykPicture
    = "/9j/7gAOQWRvYmUAZAAAAAAC/9sAQwANCQoLCggNCwoLDg4NDxMgFRMSEhMnHB4XIC4pMTAuKS0sMzpKPjM2RjcsLUBXQUZMTlJTUjI+WmFa"
      "UGBKUVJP/9sAQwEODg4TERMmFRUmTzUtNU9PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09P/8AAFAgA"
      "DAAQBAEiAAIRAQMRAQQiAP/EABYAAQEBAAAAAAAAAAAAAAAAAAAFBv/EABwQAAEEAwEAAAAAAAAAAAAAAAACAwRSEhMVkf/EABUBAQEAAAAA"
      "AAAAAAAAAAAAAAUG/8QAGREAAgMBAAAAAAAAAAAAAAAAABYCBFFS/9oADgQBAAIRAxEEAAA/ALOblFeDNyivC/obqNDdSVYLWgS7Ho0fek0W"
      "O9Jos0HOjUHOjUP/2Q==";

QByteArray bigEndian(quint32 number, int bytes)
{
    QByteArray result;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
        result.append(char(number >> shift & 0xFF));
    }
    return result;
}

/// The check sum that ends each part of a PNG file; with a wrong one the reader would not look any further.
quint32 checkSum(QByteArrayView bytes)
{
    quint32 sum = 0xFFFFFFFF;
    for (const char byte : bytes) {
        sum ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit) {
            sum = sum & 1 ? sum >> 1 ^ 0xEDB88320 : sum >> 1;
        }
    }
    return ~sum;
}

/// Where the segment that describes a JPEG picture begins.
qsizetype frameOf(const QByteArray &bytes)
{
    return std::max(bytes.indexOf("\xFF\xC0"), bytes.indexOf("\xFF\xC2")); // baseline, progressive
}

QByteArray turnedJpeg()
{
    QTemporaryFile file;
    if (!file.open()) {
        qFatal("no file for a picture");
    }
    writeTestJpeg(file.fileName(), { 90, 60 }, 6);
    return file.readAll();
}

/// Damages that an ordinary writer never makes. `strength` is a power of two.
QByteArray overloaded(const QByteArray &bytes, int kind, int strength)
{
    switch (kind) {
    case 0:
        return PictureForgery::withScans(bytes, 1 << strength);
    case 1:
        return PictureForgery::withRubbish(bytes, qsizetype(1) << 2 * strength);
    default:
        return bytes + QByteArray(qsizetype(1) << 2 * strength, kind == 2 ? '\0' : '\xFF');
    }
}

} // namespace

QList<QByteArray> PictureForgery::samples()
{
    const QImage image = detailedImage({ 320, 200 });
    return { encoded(image, "JPEG"), encoded(image, "JPEG", true), encoded(image, "PNG"),
        encoded(image.convertToFormat(QImage::Format_RGBA64), "PNG"),
        encoded(image.convertToFormat(QImage::Format_Indexed8), "PNG"), QByteArray::fromBase64(CmykPicture),
        turnedJpeg() };
}

QByteArray PictureForgery::encoded(const QImage &image, const char *format, bool progressive)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, format);
    writer.setProgressiveScanWrite(progressive);
    if (qstrcmp(format, "PNG") == 0) {
        writer.setQuality(85); // packed quickly rather than well
    }
    if (!writer.write(image)) {
        qFatal("cannot write a picture");
    }
    return bytes;
}

QByteArray PictureForgery::withSize(QByteArray bytes, int width, int height)
{
    if (bytes.startsWith("\x89PNG")) {
        bytes.replace(16, 4, bigEndian(quint32(width), 4)).replace(20, 4, bigEndian(quint32(height), 4));
        return bytes.replace(29, 4, bigEndian(checkSum(QByteArrayView(bytes).sliced(12, 17)), 4));
    }
    const qsizetype at = frameOf(bytes);
    return at < 0
        ? bytes
        : bytes.replace(at + 5, 2, bigEndian(quint32(height), 2)).replace(at + 7, 2, bigEndian(quint32(width), 2));
}

QByteArray PictureForgery::withScans(const QByteArray &bytes, int times)
{
    const qsizetype end = bytes.lastIndexOf("\xFF\xD9");
    const qsizetype scan = bytes.lastIndexOf("\xFF\xDA", end);
    return scan < 0 || end < scan
        ? bytes
        : bytes.first(scan) + bytes.sliced(scan, end - scan).repeated(times) + bytes.sliced(end);
}

QByteArray PictureForgery::withRubbish(QByteArray bytes, qsizetype length)
{
    const qsizetype at = frameOf(bytes);
    return at < 0 ? bytes : bytes.insert(at, QByteArray(length, '\x55'));
}

QByteArray PictureForgery::withFullColours(QByteArray bytes)
{
    return bytes.replace(frameOf(bytes) + 11, 1, "\x11");
}

QByteArray PictureForgery::black(int length)
{
    const QByteArray side = bigEndian(quint32(length), 2);
    // Each table holds one code, a zero bit, for "as bright as the last block" and for "nothing more in this block".
    return QByteArray::fromHex("FFD8FFDB004300") + QByteArray(64, '\1') + QByteArray::fromHex("FFC0000B08") + side
        + side + QByteArray::fromHex("01011100") + QByteArray::fromHex("FFC400140001") + QByteArray(16, '\0')
        + QByteArray::fromHex("FFC400141001") + QByteArray(16, '\0') + QByteArray::fromHex("FFDA0008010100003F00")
        + QByteArray((qsizetype(length) + 7) / 8 * ((length + 7) / 8) / 4 + 1, '\0') + QByteArray("\xFF\xD9");
}

QByteArray PictureForgery::mutated(const QList<QByteArray> &files, QRandomGenerator &random)
{
    QByteArray bytes = files.at(random.bounded(files.size()));
    const int kind = random.bounded(8);
    if (kind == 0) {
        return bytes.left(random.bounded(bytes.size()));
    }
    if (kind == 1) { // all orders of magnitude, because a test of only large ones would take hours
        const auto length = [&random] { return random.bounded(2 << random.bounded(16)); };
        const int width = length();
        return withSize(bytes, width, length());
    }
    if (kind == 2) { // a piece once more
        const auto from = random.bounded(bytes.size());
        return bytes.insert(random.bounded(bytes.size()), bytes.mid(from, random.bounded(400)));
    }
    if (kind == 6) {
        return overloaded(bytes, random.bounded(4), random.bounded(12));
    }
    const qsizetype reach = kind == 3 ? std::min<qsizetype>(200, bytes.size()) : bytes.size();
    for (int i = random.bounded(1, 20); i > 0; --i) {
        bytes[random.bounded(reach)] = char(random.bounded(256));
    }
    return bytes;
}
