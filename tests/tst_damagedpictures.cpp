#include "store/pictureloader.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class TestDamagedPictures final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void cleanup() { m_folder.reset(); }

    void whatIsNoPictureIsNull_data();
    void whatIsNoPictureIsNull();
    void pipeIsNotOpened();
    void cutPhotographIsNull_data();
    void cutPhotographIsNull();
    void cutPngIsNull();
    void photographWithSomethingBehindItIsRead();
    void hugeHeaderIsRefused();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_folder->filePath(name); }
    [[nodiscard]] static QByteArray read(const QString &path);
    static void write(const QString &path, const QByteArray &bytes);

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

constexpr QSize CopyBox(750, 500);

} // namespace

QByteArray TestDamagedPictures::read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestDamagedPictures::write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

void TestDamagedPictures::whatIsNoPictureIsNull_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("Das ist kein Bild.\n");
    QTest::newRow("one byte") << QByteArray("\xFF");
    QTest::newRow("JPEG start only") << QByteArray("\xFF\xD8\xFF");
    QTest::newRow("PNG start only") << QByteArray("\x89PNG\r\n\x1A\n");
    QTest::newRow("GIF") << QByteArray("GIF89a\1\0\1\0\x80\0\0\0\0\0\xff\xff\xff,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 35);
    QTest::newRow("drawing") << QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"/>");
    QTest::newRow("junk behind a JPEG start") << QByteArray("\xFF\xD8\xFF") + QByteArray(5000, '\xFF');
}

void TestDamagedPictures::whatIsNoPictureIsNull()
{
    QFETCH(const QByteArray, bytes);
    write(path(u"a.jpg"_s), bytes);
    QVERIFY(loadPicture(path(u"a.jpg"_s), CopyBox).isNull());
    QVERIFY(!pictureSize(path(u"a.jpg"_s)).isValid());
}

void TestDamagedPictures::pipeIsNotOpened()
{
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"pipe.jpg"_s)).constData(), 0600), 0);
    for (const QString &name :
        { path(u"pipe.jpg"_s), u"/dev/zero"_s, m_folder->path(), path(u"missing.jpg"_s), QString() }) {
        QVERIFY(loadPicture(name, CopyBox).isNull());
        QVERIFY(!pictureSize(name).isValid());
    }
}

void TestDamagedPictures::cutPhotographIsNull_data()
{
    QTest::addColumn<double>("share");
    QTest::addColumn<bool>("hasThumbnail");
    QTest::newRow("half") << 0.5 << false;
    QTest::newRow("nearly whole") << 0.99 << false;
    QTest::newRow("in the header") << 0.01 << false;
    QTest::newRow("half, with a whole thumbnail in the header") << 0.5 << true;
}

void TestDamagedPictures::cutPhotographIsNull()
{
    QFETCH(const double, share);
    QFETCH(const bool, hasThumbnail);
    QVERIFY(detailedImage({ 1200, 800 }).save(path(u"a.jpg"_s), "JPEG"));
    QByteArray bytes = read(path(u"a.jpg"_s));
    if (hasThumbnail) {
        writeTestJpeg(path(u"thumbnail.jpg"_s), { 60, 40 });
        const QByteArray thumbnail = read(path(u"thumbnail.jpg"_s));
        const auto length = int(thumbnail.size() + 2);
        bytes.insert(2, QByteArray("\xFF\xE5") + char(length >> 8) + char(length & 0xFF) + thumbnail);
        write(path(u"a.jpg"_s), bytes);
        QCOMPARE(loadPicture(path(u"a.jpg"_s), CopyBox).size(), QSize(750, 500));
    }
    bytes.truncate(qsizetype(double(bytes.size()) * share));
    write(path(u"a.jpg"_s), bytes);
    QVERIFY(loadPicture(path(u"a.jpg"_s), CopyBox).isNull());
}

void TestDamagedPictures::cutPngIsNull()
{
    QVERIFY(detailedImage({ 1200, 800 }).save(path(u"a.png"_s), "PNG"));
    const QByteArray bytes = read(path(u"a.png"_s));
    write(path(u"a.png"_s), bytes.left(bytes.size() / 2));
    QVERIFY(loadPicture(path(u"a.png"_s), CopyBox).isNull());
}

void TestDamagedPictures::photographWithSomethingBehindItIsRead()
{
    QVERIFY(detailedImage({ 1200, 800 }).save(path(u"a.jpg"_s), "JPEG"));
    const QByteArray bytes = read(path(u"a.jpg"_s)) + QByteArray("film\xFF\xDAof the camera");
    write(path(u"a.jpg"_s), bytes);
    QCOMPARE(loadPicture(path(u"a.jpg"_s), CopyBox).size(), QSize(750, 500));
}

void TestDamagedPictures::hugeHeaderIsRefused()
{
    QImage(8, 8, QImage::Format_RGB32).save(path(u"a.png"_s), "PNG");
    QByteArray png = read(path(u"a.png"_s));
    png.replace(16, 8, QByteArray::fromHex("0000EA600000EA60")); // 60000 x 60000
    png.replace(29, 4, QByteArray::fromHex("0FB0E215")); // checksum of the changed header
    write(path(u"a.png"_s), png);
    QCOMPARE(pictureSize(path(u"a.png"_s)), QSize(60000, 60000));
    QVERIFY(loadPicture(path(u"a.png"_s), CopyBox).isNull());

    writeTestJpeg(path(u"a.jpg"_s), { 64, 64 });
    QByteArray jpeg = read(path(u"a.jpg"_s));
    const qsizetype frame = jpeg.indexOf("\xFF\xC0");
    jpeg.replace(frame + 5, 4, QByteArray::fromHex("EA60EA60"));
    write(path(u"a.jpg"_s), jpeg);
    QCOMPARE(pictureSize(path(u"a.jpg"_s)), QSize(60000, 60000));
    const QImage image = loadPicture(path(u"a.jpg"_s), CopyBox);
    QVERIFY(image.isNull() || image.size() == QSize(500, 500)); // never 60000 x 60000 pixels in memory
}

BAHNITO_TEST_MAIN(TestDamagedPictures)
#include "tst_damagedpictures.moc"
