#include "store/areaaverage.h"

#include <QColorSpace>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

constexpr int Channels = 4; // a byte each

/// The pixels of a line that fall on one pixel of the smaller line.
struct Share
{
    int first = 0;
    std::vector<float> weights; // sum 1
};

std::vector<Share> shares(double covered, int pixels, int size)
{
    const double step = covered / size;
    std::vector<Share> all(static_cast<std::size_t>(size));
    for (int i = 0; i < size; ++i) {
        const double from = i * step;
        const double to = from + step;
        Share &share = all[static_cast<std::size_t>(i)];
        share.first = std::min(int(from), pixels - 1);
        const int last = std::clamp(int(std::ceil(to)) - 1, share.first, pixels - 1);
        for (int at = share.first; at <= last; ++at) {
            const double part = std::min<double>(to, at + 1) - std::max<double>(from, at);
            share.weights.push_back(float(part / step));
        }
    }
    return all;
}

void addLine(std::vector<float> &sum, const uchar *line, float weight)
{
    float *target = sum.data(); // a plain loop, which compilers turn into vector instructions
    const std::size_t count = sum.size();
    for (std::size_t i = 0; i < count; ++i) {
        target[i] += weight * float(line[i]);
    }
}

void writeLine(uchar *target, const std::vector<float> &sum, const std::vector<Share> &columns)
{
    for (const Share &share : columns) {
        std::array<float, Channels> pixel { 0.5F, 0.5F, 0.5F, 0.5F }; // rounds
        const float *source = sum.data() + static_cast<std::ptrdiff_t>(share.first) * Channels;
        for (const float weight : share.weights) {
            for (std::size_t channel = 0; channel < Channels; ++channel) {
                pixel[channel] += weight * source[channel];
            }
            source += Channels;
        }
        target = std::transform(pixel.begin(), pixel.end(), target, [](float value) { return uchar(value); });
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
    std::vector<float> sum(static_cast<std::size_t>(image.width()) * Channels);
    for (int y = 0; y < size.height(); ++y) {
        const Share &share = rows[static_cast<std::size_t>(y)];
        std::fill(sum.begin(), sum.end(), 0.0F);
        int line = share.first;
        for (const float weight : share.weights) {
            addLine(sum, image.constScanLine(line), weight);
            ++line;
        }
        writeLine(result.scanLine(y), sum, columns);
    }
    return result;
}
