#pragma once

#include <QtGlobal>

#include <optional>

class QIODevice;

/// What the header of a JPEG file tells about the work of decoding it.
struct JpegHeader
{
    qint64 pixels = 0;
    qint64 memory = 0; // bytes, for files that can only be decoded with the whole picture in memory; else 0
    qint64 firstScan = 0; // where in the file the picture's own data begin
};

/// Reads no more than the header. Nothing for a file without a picture, and for one that asks for more than any
/// photograph needs: a few hundred bytes can claim 60,000 x 60,000 pixels that are decoded as a whole, which takes
/// eleven gigabytes and half a minute.
[[nodiscard]] std::optional<JpegHeader> readJpegHeader(QIODevice &file);

/// Whether the file holds its picture to the end, so that no grey part would be shown, and decodes in a time that a
/// user waits. To be asked before decoding; goes back to the start of the file. Reads all of it only where the last
/// bytes do not tell enough, and keeps a small piece at a time.
[[nodiscard]] bool isWorthDecoding(QIODevice &file, const JpegHeader &header);
