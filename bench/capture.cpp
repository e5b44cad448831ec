#include "bench/capture.h"

#include "bench/measure.h"

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QProcess>
#include <QStandardPaths>

#include <memory>

#include <turbojpeg.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize CopyBox(750, 500);
constexpr int Quality = 75; // what Qt encodes with

using Handle = std::unique_ptr<void, int (*)(tjhandle)>;

void must(bool isGood, const char *what)
{
    if (!isGood) {
        qFatal("The floor of capturing failed: %s", what);
    }
}

/// Smallest of the sizes that the decoder offers which is at least `wanted`.
QSize smallestDecode(const QSize &source, const QSize &wanted)
{
    QSize best = source;
    int count = 0;
    const tjscalingfactor *factors = tjGetScalingFactors(&count);
    for (int i = 0; i < count; ++i) {
        const tjscalingfactor factor = factors[i];
        const QSize scaled(TJSCALED(source.width(), factor), TJSCALED(source.height(), factor));
        if (scaled.width() >= wanted.width() && scaled.height() >= wanted.height() && scaled.width() < best.width()) {
            best = scaled;
        }
    }
    return best;
}

QImage decodedJpeg(const QString &path)
{
    QFile file(path);
    must(file.open(QIODevice::ReadOnly), "open");
    const QByteArray bytes = file.readAll();
    const auto *data = reinterpret_cast<const unsigned char *>(bytes.constData());
    const Handle decoder(tjInitDecompress(), &tjDestroy);
    int width = 0;
    int height = 0;
    int subsampling = 0;
    int colors = 0;
    must(tjDecompressHeader3(decoder.get(), data, size_t(bytes.size()), &width, &height, &subsampling, &colors) == 0,
        "header");
    const QSize wanted = QSize(width, height).scaled(CopyBox, Qt::KeepAspectRatio);
    const QSize reduced = smallestDecode({ width, height }, wanted);
    QImage image(reduced, QImage::Format_RGB32);
    must(tjDecompress2(decoder.get(), data, size_t(bytes.size()), image.bits(), reduced.width(),
             int(image.bytesPerLine()), reduced.height(), TJPF_BGRX, 0)
            == 0,
        "decode");
    return reduced == wanted ? image : image.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage decodedPng(const QString &path)
{
    QImage image = QImageReader(path).read();
    must(!image.isNull(), "decode");
    return image.scaled(CopyBox, Qt::KeepAspectRatio, Qt::SmoothTransformation).convertToFormat(QImage::Format_RGB32);
}

void writeJpeg(const QImage &image, const QString &target)
{
    const Handle encoder(tjInitCompress(), &tjDestroy);
    unsigned char *encoded = nullptr;
    unsigned long size = 0;
    must(tjCompress2(encoder.get(), image.constBits(), image.width(), int(image.bytesPerLine()), image.height(),
             TJPF_BGRX, &encoded, &size, TJSAMP_420, Quality, 0)
            == 0,
        "encode");
    QFile file(target);
    must(file.open(QIODevice::WriteOnly), "open the target");
    must(file.write(reinterpret_cast<const char *>(encoded), qint64(size)) == qint64(size) && file.flush(), "write");
    must(fsync(file.handle()) == 0, "fsync");
    tjFree(encoded);
}

} // namespace

void capturePlainly(const QString &source, const QString &target)
{
    writeJpeg(source.endsWith(u".png"_s) ? decodedPng(source) : decodedJpeg(source), target);
}

double captureWithVips(const QString &source, const QString &target)
{
    const QString program = QStandardPaths::findExecutable(u"vipsthumbnail"_s);
    if (program.isEmpty()) {
        return -1;
    }
    int code = -1;
    const double taken = elapsed([&] {
        code = QProcess::execute(program, { source, u"--size"_s, u"750x500"_s, u"-o"_s, target + u"[Q=75]"_s });
    });
    return code == 0 ? taken : -1;
}
