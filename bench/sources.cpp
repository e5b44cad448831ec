#include "bench/sources.h"

#include "bench/sample/sampleplan.h"

#include <QDir>
#include <QFile>
#include <QImageWriter>
#include <QRandomGenerator>

#include <algorithm>
#include <future>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr quint32 Seed = 20261120;
constexpr QSize CopyBox(750, 500);
constexpr int SourceQuality = 92;

/// A painted picture is smooth as no photograph is; without grain it would be decoded far too quickly.
void addGrain(QImage &image, int strength, quint32 seed)
{
    QRandomGenerator random(seed);
    constexpr int TableSize = 4096;
    std::vector<int> table(TableSize);
    std::generate(table.begin(), table.end(),
        [&] { return (random.bounded(2 * strength + 1) + random.bounded(2 * strength + 1)) / 2 - strength; });
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        auto at = size_t(random.bounded(TableSize));
        for (int x = 0; x < image.width(); ++x) {
            const int noise = table[(at + size_t(x) * 7) % TableSize];
            const auto grained = [noise](int channel) { return std::clamp(channel + noise, 0, 255); };
            line[x] = qRgb(grained(qRed(line[x])), grained(qGreen(line[x])), grained(qBlue(line[x])));
        }
    }
}

bool write(const QImage &image, const QString &path, SourcePhoto::Kind kind)
{
    QFile::remove(path);
    QImageWriter writer(path, kind == SourcePhoto::Png ? "png" : "jpeg");
    writer.setProgressiveScanWrite(kind == SourcePhoto::Progressive);
    if (kind != SourcePhoto::Png) {
        writer.setQuality(SourceQuality);
    }
    return writer.write(image);
}

bool makeCopy(const QString &path, const Motif &motif)
{
    QImage copy = paintPhotograph(motif).scaled(CopyBox, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    copy.convertTo(QImage::Format_RGB32);
    addGrain(copy, 10, motif.seed);
    return QImageWriter(path, "jpeg").write(copy);
}

} // namespace

QList<SourcePhoto> sourcePhotos(bool isQuick)
{
    QList<SourcePhoto> photos {
        { u"24 megapixels.jpg"_s, QSize(6000, 4000), SourcePhoto::Jpeg },
        { u"24 megapixels, 6001 x 4001.jpg"_s, QSize(6001, 4001), SourcePhoto::Jpeg },
        { u"20 megapixels.jpg"_s, QSize(5472, 3648), SourcePhoto::Jpeg },
        { u"24 megapixels, progressive.jpg"_s, QSize(6000, 4000), SourcePhoto::Progressive },
        { u"24 megapixels.png"_s, QSize(6000, 4000), SourcePhoto::Png },
        { u"50 megapixels.jpg"_s, QSize(8660, 5773), SourcePhoto::Jpeg },
    };
    if (!isQuick) {
        photos.append({ u"100 megapixels.jpg"_s, QSize(12248, 8165), SourcePhoto::Jpeg });
    }
    return photos;
}

/// Sizes of cameras, old and new, and exact multiples of a copy's, where the decoder alone makes the copy.
QList<SourcePhoto> qualityPhotos(bool isQuick)
{
    QList<SourcePhoto> photos = sourcePhotos(isQuick);
    for (const QSize &size : { QSize(1500, 1000), QSize(1600, 1200), QSize(2700, 1800), QSize(2816, 2112),
             QSize(3000, 2000), QSize(3008, 2000), QSize(3456, 5184), QSize(5616, 3744), QSize(6016, 4016) }) {
        photos.append({ u"%1 x %2.jpg"_s.arg(size.width()).arg(size.height()), size, SourcePhoto::Jpeg });
    }
    photos.append({ u"3008 x 2000.png"_s, QSize(3008, 2000), SourcePhoto::Png });
    return photos;
}

bool makeSourcePhotos(const QString &folder, bool isQuick)
{
    QDir().mkpath(folder);
    const Motif motif = planSample(50, Seed).pictures.first().motif;
    const QList<SourcePhoto> photos = qualityPhotos(isQuick);
    return std::all_of(photos.begin(), photos.end(), [&](const SourcePhoto &photo) {
        const QString path = folder + u'/' + photo.name;
        if (QFile::exists(path)) {
            return true;
        }
        QImage image = paintPhotograph(motif, photo.size);
        addGrain(image, 8, Seed);
        return write(image, path, photo.kind);
    });
}

bool makeBaseCopies(const QString &folder, int count)
{
    if (QFile::exists(baseCopy(folder, count - 1))) {
        return true;
    }
    QDir().mkpath(folder);
    const QList<PlannedPicture> pictures = planSample(count, Seed).pictures;
    const int workers = std::max(1, int(std::thread::hardware_concurrency()));
    std::vector<std::future<bool>> running;
    running.reserve(std::size_t(workers));
    for (int worker = 0; worker < workers; ++worker) {
        running.push_back(std::async(std::launch::async, [&, worker] {
            bool isGood = true;
            for (int i = worker; i < count && isGood; i += workers) {
                const qsizetype spread = qsizetype(i) * 37 % pictures.size(); // else all show the same few classes
                isGood = makeCopy(baseCopy(folder, i), pictures.at(spread).motif);
            }
            return isGood;
        }));
    }
    return std::all_of(running.begin(), running.end(), [](std::future<bool> &worker) { return worker.get(); });
}

QString baseCopy(const QString &folder, int index)
{
    return u"%1/%2.jpg"_s.arg(folder).arg(index, 3, 10, QChar(u'0'));
}
