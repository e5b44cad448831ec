#include "store/jpegmemory.h"

#include <QByteArray>
#include <QIODevice>

#include <algorithm>
#include <cstring>

namespace {

constexpr qint64 MostMemory = 512LL * 1024 * 1024; // bytes
constexpr qint64 MostWork = 16'000'000'000; // bytes passed over, which takes three seconds or four
constexpr int WorkOfCode = 200; // for a byte of the file, against one of memory that a scan goes through
constexpr qint64 LongFile = 32LL * 1024 * 1024; // bytes; decoding takes so long that reading it first is no loss
constexpr int BytesPerCoefficient = 2;
constexpr int MostSegments = 1000; // photographs have some dozen, with a long description some hundred
constexpr qint64 MostRubbish = 64LL * 1024; // bytes that decoders skip between two segments

enum Marker { FirstFrame = 0xC0, FirstRestart = 0xD0, LastRestart = 0xD7, Start = 0xD8, End = 0xD9, Scan = 0xDA };

/// Hands out a file's bytes from its present position on, without keeping more than a piece of it.
class Bytes final
{
public:
    explicit Bytes(QIODevice &file)
        : m_file(file)
        , m_next(file.pos())
    { }

    /// In the file.
    [[nodiscard]] qint64 position() const { return m_next - (m_piece.size() - m_at); }

    /// -1 at the end.
    int take() { return m_at < m_piece.size() || readPiece() ? quint8(m_piece.at(m_at++)) : -1; }

    int takePair()
    {
        const int first = take();
        return std::max(0, first) * 256 + std::max(0, take());
    }

    QByteArray take(int count);
    void skip(qint64 count);

    /// Goes to the next byte of this value, but not past `end` and the piece in hand. False when there is none.
    bool find(char byte, qint64 end);

private:
    bool readPiece();

    QIODevice &m_file;
    QByteArray m_piece;
    qsizetype m_at = 0; // in the piece
    qint64 m_next; // where in the file the next piece begins
};

QByteArray Bytes::take(int count)
{
    QByteArray taken;
    while (taken.size() < count && (m_at < m_piece.size() || readPiece())) {
        const qsizetype length = std::min<qsizetype>(count - taken.size(), m_piece.size() - m_at);
        taken.append(m_piece.constData() + m_at, length);
        m_at += length;
    }
    return taken;
}

void Bytes::skip(qint64 count)
{
    const qsizetype inHand = m_piece.size() - m_at;
    if (count <= inHand) {
        m_at += count;
        return;
    }
    m_next += count - inHand;
    m_piece.clear();
    m_at = 0;
    m_file.seek(m_next);
}

bool Bytes::find(char byte, qint64 end)
{
    while ((m_at < m_piece.size() || readPiece()) && position() < end) {
        const void *found = std::memchr(m_piece.constData() + m_at, byte, std::size_t(m_piece.size() - m_at));
        if (found) {
            m_at = static_cast<const char *>(found) - m_piece.constData();
            return true;
        }
        m_at = m_piece.size();
    }
    return false;
}

bool Bytes::readPiece()
{
    constexpr qint64 PieceSize = 16LL * 1024;
    m_piece = m_file.read(PieceSize);
    m_next += m_piece.size();
    m_at = 0;
    return !m_piece.isEmpty();
}

/// The next marker that begins a segment or ends the picture, before `end` of the file; 0 when there is none. What
/// decoders take for data or rubbish is passed over, else a segment could be hidden in the length of a false one.
int takeMarker(Bytes &bytes, qint64 end)
{
    while (bytes.find('\xFF', end)) {
        int marker = bytes.take();
        while (marker == 0xFF && bytes.position() < end) {
            marker = bytes.take();
        }
        const bool isRestart = marker >= FirstRestart && marker <= LastRestart;
        if (marker >= FirstFrame && marker != 0xFF && !isRestart) {
            return marker;
        }
    }
    return 0;
}

/// The length of what follows a marker, which counts itself.
int takeLength(Bytes &bytes)
{
    return std::max(0, bytes.takePair() - 2);
}

bool isFrame(int marker)
{
    const bool isTable = marker == 0xC4 || marker == 0xC8 || marker == 0xCC;
    return marker >= FirstFrame && marker <= 0xCF && !isTable;
}

bool isProgressive(int marker)
{
    return marker == 0xC2 || marker == 0xC6 || marker == 0xCA || marker == 0xCE;
}

int byteAt(const QByteArray &bytes, qsizetype at)
{
    return at < bytes.size() ? quint8(bytes.at(at)) : 0;
}

qint64 pixelsOf(const QByteArray &frame)
{
    const auto pairAt = [&frame](qsizetype at) { return byteAt(frame, at) * 256 + byteAt(frame, at + 1); };
    return qint64(pairAt(1)) * pairAt(3);
}

int componentsOf(const QByteArray &frame)
{
    return byteAt(frame, 5);
}

/// What all coefficients of the frame take, in bytes.
qint64 coefficientMemory(const QByteArray &frame)
{
    qint64 samples = 0;
    qint64 across = 1;
    qint64 down = 1;
    for (int i = 0; i < componentsOf(frame); ++i) {
        const int factors = byteAt(frame, 7 + 3 * i);
        samples += qint64(factors >> 4) * (factors & 15);
        across = std::max<qint64>(across, factors >> 4);
        down = std::max<qint64>(down, factors & 15);
    }
    return pixelsOf(frame) * BytesPerCoefficient * samples / (across * down);
}

/// Whether the last bytes are those that end a picture.
bool endsWithMarker(QIODevice &file)
{
    file.seek(file.size() - 2);
    return file.read(2) == "\xFF\xD9";
}

/// What the scans from the first one to the end of the picture cost, in bytes passed over; nothing without an end.
std::optional<qint64> workOfScans(Bytes &bytes, qint64 memory, qint64 end)
{
    const qint64 start = bytes.position();
    qint64 work = 0;
    int marker = Scan;
    for (int segment = 0; segment < MostSegments; ++segment) {
        bytes.skip(takeLength(bytes));
        work += marker == Scan ? memory : 0;
        marker = takeMarker(bytes, end);
        if (marker == End) {
            return work + WorkOfCode * (bytes.position() - start);
        }
        if (marker == 0 || marker == Start) {
            return {};
        }
    }
    return {};
}

} // namespace

std::optional<JpegHeader> readJpegHeader(QIODevice &file)
{
    file.seek(2); // behind the start marker
    Bytes bytes(file);
    int frameMarker = 0;
    QByteArray frame;
    for (int segment = 0; segment < MostSegments; ++segment) {
        const int marker = takeMarker(bytes, bytes.position() + MostRubbish);
        if (marker == 0 || marker == Start || marker == End) {
            return {};
        }
        const qint64 start = bytes.position();
        const int length = takeLength(bytes);
        if (isFrame(marker)) {
            frameMarker = marker;
            frame = bytes.take(length);
        } else if (marker != Scan) {
            bytes.skip(length);
        } else {
            // A first scan without all colours means that the others follow: all is kept until the last one is read.
            const bool isKeptWhole = isProgressive(frameMarker) || bytes.take() < componentsOf(frame);
            const JpegHeader header { pixelsOf(frame), isKeptWhole ? coefficientMemory(frame) : 0, start };
            const bool isTooMuch = header.memory > MostMemory;
            return isTooMuch || header.pixels == 0 ? std::nullopt : std::optional(header);
        }
    }
    return {};
}

bool isWorthDecoding(QIODevice &file, const JpegHeader &header)
{
    if (header.memory == 0 && file.size() < LongFile && endsWithMarker(file)) {
        file.seek(0);
        return true;
    }
    file.seek(header.firstScan);
    Bytes bytes(file);
    const std::optional<qint64> work = workOfScans(bytes, header.memory, file.size());
    file.seek(0);
    return work && (header.memory == 0 || *work <= MostWork);
}
