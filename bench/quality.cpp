#include "bench/quality.h"

#include "forms/storedpicture.h"
#include "store/pictureloader.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

using Channels = std::array<double, 3>;

/// Part of a source line that falls on each target pixel, as weights.
struct Share
{
    int first;
    std::vector<double> weights; // sum 1
};

std::vector<Share> shares(int source, int target)
{
    std::vector<Share> all;
    const double part = double(source) / target;
    for (int i = 0; i < target; ++i) {
        const double from = i * part;
        const double to = (i + 1) * part;
        Share share { int(from), {} };
        for (int at = share.first; at < std::min(source, int(std::ceil(to))); ++at) {
            share.weights.push_back((std::min<double>(to, at + 1) - std::max<double>(from, at)) / part);
        }
        all.push_back(std::move(share));
    }
    return all;
}

Channels average(const QImage &source, const Share &columns, const Share &rows)
{
    Channels sum {};
    for (size_t r = 0; r < rows.weights.size(); ++r) {
        const auto *line = reinterpret_cast<const QRgb *>(source.constScanLine(rows.first + int(r)));
        for (size_t c = 0; c < columns.weights.size(); ++c) {
            const QRgb pixel = line[columns.first + int(c)];
            const double weight = rows.weights[r] * columns.weights[c];
            sum[0] += weight * qRed(pixel);
            sum[1] += weight * qGreen(pixel);
            sum[2] += weight * qBlue(pixel);
        }
    }
    return sum;
}

double decibels(const QImage &source, const QImage &copy)
{
    const std::vector<Share> columns = shares(source.width(), copy.width());
    const std::vector<Share> rows = shares(source.height(), copy.height());
    double error = 0;
    for (int y = 0; y < copy.height(); ++y) {
        for (int x = 0; x < copy.width(); ++x) {
            const Channels exact = average(source, columns[size_t(x)], rows[size_t(y)]);
            const QRgb pixel = copy.pixel(x, y);
            const Channels made { double(qRed(pixel)), double(qGreen(pixel)), double(qBlue(pixel)) };
            for (size_t i = 0; i < exact.size(); ++i) {
                error += (made[i] - exact[i]) * (made[i] - exact[i]);
            }
        }
    }
    const double mean = error / (3.0 * copy.width() * copy.height());
    return 10 * std::log10(255 * 255 / std::max(mean, 1e-9));
}

QImage wholePicture(const QString &path)
{
    QImage source(path);
    source.convertTo(QImage::Format_RGB32);
    if (source.isNull()) {
        qFatal("%s cannot be read.", qUtf8Printable(path));
    }
    return source;
}

} // namespace

double copyQuality(const QString &path)
{
    return decibels(wholePicture(path), reducedPicture(path));
}

double shownQuality(const QString &path)
{
    const QSize box(322, 216);
    const SizeChoice intoBox = [&box](const QSize &size) { return fittedInto(size, box); };
    return decibels(wholePicture(path), loadPicture(path, intoBox, Reduction::Quick));
}
