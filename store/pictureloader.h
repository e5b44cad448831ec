#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <functional>

/// `size` made to fit into `box` with its aspect ratio kept; never larger than `size` itself, never below 1 x 1.
[[nodiscard]] QSize fittedInto(const QSize &size, const QSize &box);

/// Size of the upright picture in pixels, read from the file's header only; invalid for anything that is no
/// readable PNG or JPEG file.
[[nodiscard]] QSize pictureSize(const QString &path);

/// Whether a readable picture takes so long to decode that whoever walks through a folder would wait for it: many
/// pixels in a format that has to be decoded in full. Told from the file's header only.
[[nodiscard]] bool isSlowToRead(const QString &path);

/// Chooses the size in pixels at which a picture of the given upright size is wanted.
using SizeChoice = std::function<QSize(const QSize &)>;

/// How a JPEG file is made smaller.
enum class Reduction {
    Quick, // decoded as small as will do: for pictures that are only looked at, a trace softer
    Sharp, // each pixel as good as the average of all that it stands for
};

/// The upright picture at the chosen size, decoded reduced where the format can. Null for anything that is no
/// readable PNG or JPEG file: pipes, folders and devices are never opened.
[[nodiscard]] QImage loadPicture(const QString &path, const SizeChoice &choose, Reduction reduction);

/// The same, fitted into `box` device pixels, never enlarged, and sharp.
[[nodiscard]] QImage loadPicture(const QString &path, const QSize &box);
