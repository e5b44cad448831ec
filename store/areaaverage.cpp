#include "store/areaaverage.h"

#include <QColorSpace>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

constexpr std::size_t Channels = 4; // a byte each

/// The pixels of a line that fall on one pixel of the smaller line: a part of the first one, some as a whole, and a
/// part of the last one. All weights together are 1.
struct Share
{
    std::size_t first = 0;
    std::size_t last = 0; // the first one, with no weight, where there is but one
    float firstWeight = 0;
    float wholeWeight = 0; // of each between the two
    float lastWeight = 0;
};

std::vector<Share> shares(double covered, int pixels, int size)
{
    const double step = covered / size;
    std::vector<Share> all;
    all.reserve(static_cast<std::size_t>(size));
    for (int i = 0; i < size; ++i) {
        const double from = i * step;
        const double to = from + step;
        const int first = std::min(int(from), pixels - 1);
        const int last = std::clamp(int(std::ceil(to)) - 1, first, pixels - 1);
        const auto weight
            = [&](int at) { return float((std::min<double>(to, at + 1) - std::max<double>(from, at)) / step); };
        all.push_back({ static_cast<std::size_t>(first), static_cast<std::size_t>(last), weight(first), float(1 / step),
            last > first ? weight(last) : 0 });
    }
    return all;
}

// Plain loops over whole lines, which compilers turn into vector instructions.

void addBytes(std::vector<quint16> &sum, const uchar *line)
{
    quint16 *target = sum.data();
    const std::size_t count = sum.size();
    for (std::size_t i = 0; i < count; ++i) {
        target[i] = quint16(target[i] + line[i]);
    }
}

/// The lines of `image` that fall on one line of the result, as one of the same width.
void averageLines(std::vector<float> &average, std::vector<quint16> &sum, const QImage &image, const Share &rows)
{
    std::fill(sum.begin(), sum.end(), quint16(0)); // has room for 257 lines of bytes
    for (std::size_t y = rows.first + 1; y < rows.last; ++y) {
        addBytes(sum, image.constScanLine(int(y)));
    }
    const uchar *first = image.constScanLine(int(rows.first));
    const uchar *last = image.constScanLine(int(rows.last));
    const quint16 *whole = sum.data();
    float *target = average.data();
    const std::size_t count = average.size();
    for (std::size_t i = 0; i < count; ++i) {
        target[i] = rows.firstWeight * float(first[i]) + rows.wholeWeight * float(whole[i])
            + rows.lastWeight * float(last[i]);
    }
}

using Pixel = std::array<float, Channels>;

void addPixel(Pixel &sum, const float *pixel, float weight)
{
    for (std::size_t channel = 0; channel < Channels; ++channel) {
        sum[channel] += weight * pixel[channel];
    }
}

/// A line of pixels as one of the width of the result.
void averageColumns(std::vector<float> &result, const std::vector<float> &line, const std::vector<Share> &columns)
{
    float *target = result.data();
    for (const Share &share : columns) {
        const float *pixel = line.data() + share.first * Channels;
        const float *last = line.data() + share.last * Channels;
        Pixel sum { 0.5F, 0.5F, 0.5F, 0.5F }; // rounds
        addPixel(sum, pixel, share.firstWeight);
        for (pixel += Channels; pixel < last; pixel += Channels) {
            addPixel(sum, pixel, share.wholeWeight);
        }
        addPixel(sum, last, share.lastWeight);
        target = std::copy(sum.begin(), sum.end(), target);
    }
}

void writeBytes(uchar *target, const std::vector<float> &line)
{
    const float *source = line.data();
    const std::size_t count = line.size();
    for (std::size_t i = 0; i < count; ++i) {
        target[i] = uchar(int(source[i]));
    }
}

} // namespace

QImage areaAverage(QImage image, const QSizeF &covered, const QSize &size)
{
    image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    const std::vector<Share> columns = shares(covered.width(), image.width(), size.width());
    const std::vector<Share> rows = shares(covered.height(), image.height(), size.height());
    QImage result(size, image.format());
    result.setColorSpace(image.colorSpace());
    std::vector<quint16> sum(static_cast<std::size_t>(image.width()) * Channels);
    std::vector<float> line(sum.size());
    std::vector<float> averages(columns.size() * Channels);
    for (int y = 0; y < size.height(); ++y) {
        averageLines(line, sum, image, rows[static_cast<std::size_t>(y)]);
        averageColumns(averages, line, columns);
        writeBytes(result.scanLine(y), averages);
    }
    return result;
}
