#include "forms/storedpicture.h"
#include "store/statement.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QFile>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class TestStoredPicture final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_catalogue.reset(); }

    void removedPictureHasNeitherRowNorCopy();
    void copyStaysWhereTheDeletionIsIgnored();
    void copyStaysWhereTheRowIsGone();
    void unreadableIdMeansNoRow();
    void copyThatIsTheNewSourceStays();

private:
    [[nodiscard]] QString remove() const { return removePicture(m_id, m_picture, false); }
    [[nodiscard]] int rows() const { return m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(); }
    [[nodiscard]] bool hasCopy() const { return QFile::exists(m_picture.copyPath); }

    std::unique_ptr<TestCatalogue> m_catalogue;
    int m_id = 0;
    StoredPicture m_picture;
};

namespace {

const QString Missing = u"Das Bild ist nicht mehr vorhanden."_s;

} // namespace

void TestStoredPicture::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_id = m_catalogue->addPicture(1);
    const std::optional<StoredPicture> stored = readPicture(m_id);
    QVERIFY(stored.has_value());
    m_picture = *stored;
    QVERIFY(hasCopy());
}

void TestStoredPicture::removedPictureHasNeitherRowNorCopy()
{
    QCOMPARE(remove(), QString());
    QCOMPARE(rows(), 0);
    QVERIFY(!hasCopy());
    QVERIFY(QFile::exists(m_picture.originalPath));
}

void TestStoredPicture::copyStaysWhereTheDeletionIsIgnored()
{
    QVERIFY(executeWrite(u"CREATE TEMP TRIGGER t BEFORE DELETE ON loc_picture BEGIN SELECT RAISE(IGNORE); END"_s).done);
    QCOMPARE(remove(), Missing);
    QCOMPARE(rows(), 1);
    QVERIFY(hasCopy());
}

void TestStoredPicture::copyStaysWhereTheRowIsGone()
{
    QVERIFY(executeWrite(u"UPDATE loc_picture SET id = 77"_s).done);
    QCOMPARE(remove(), Missing);
    QCOMPARE(rows(), 1);
    QVERIFY(hasCopy());
}

void TestStoredPicture::unreadableIdMeansNoRow()
{
    QVERIFY(executeWrite(u"UPDATE loc_picture SET id = 0"_s).done); // what an id beyond 32 bits is read as
    m_id = 0;
    QCOMPARE(remove(), Missing);
    QCOMPARE(rows(), 1);
    QVERIFY(hasCopy());
}

void TestStoredPicture::copyThatIsTheNewSourceStays()
{
    const int other = m_catalogue->addPicture(1);
    std::optional<StoredPicture> changed = readPicture(other);
    QVERIFY(changed.has_value());
    changed->originalPath = m_catalogue->path(m_picture.copyPath);
    QCOMPARE(updatePicture(other, *changed, QImage()).result, PictureOutcome::Stored);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Datei bleibt stehen"_s));
    QCOMPARE(remove(), QString());
    QCOMPARE(rows(), 1);
    QVERIFY(hasCopy());
}

BAHNITO_TEST_MAIN(TestStoredPicture)
#include "tst_storedpicture.moc"
