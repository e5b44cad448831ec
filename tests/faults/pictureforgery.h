#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QRandomGenerator>

/// Makes picture files of every kind that the program reads, and damages and falsifies them.
namespace PictureForgery {

enum Sample { Baseline, Progressive, Png, DeepPng, PalettePng, Cmyk, Turned, SampleCount };

/// Small whole files, in the order of their kinds.
[[nodiscard]] QList<QByteArray> samples();

[[nodiscard]] QByteArray encoded(const QImage &image, const char *format, bool progressive = false);

/// The file with other width and height in its header.
[[nodiscard]] QByteArray withSize(QByteArray file, int width, int height);

/// The JPEG file with its last scan as often as told.
[[nodiscard]] QByteArray withScans(const QByteArray &file, int times);

/// The JPEG file with so many bytes that mean nothing before the segment that describes the picture.
[[nodiscard]] QByteArray withRubbish(QByteArray file, qsizetype length);

/// The JPEG file with all colours at the full resolution in its header. What follows no longer fits it, but takes the
/// memory that such a picture takes.
[[nodiscard]] QByteArray withFullColours(QByteArray file);

/// A JPEG file of that size that is black all over, in as few bytes as there can be for blocks that are all there: a
/// decoder cannot leave one out.
[[nodiscard]] QByteArray black(int length);

/// One of the files, cut, with other bytes or pieces in it, with another size in its header, with many scans, or with
/// rubbish in it or behind it.
[[nodiscard]] QByteArray mutated(const QList<QByteArray> &files, QRandomGenerator &random);

} // namespace PictureForgery
