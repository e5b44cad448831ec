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
    void pictureOfAVanishedEntryIsNotStored();
    void pictureOfAnEntryThatWasNeverStoredIsNotStored();
    void seventhPictureIsNotStored();
    void pictureWithoutAReadableIdIsNotStored();
    void pictureOfAGroupNeedsNoEntry();
    void vanishedPictureIsNotReplaced();

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
const QString NewPath = u"./Data/Pictures/Folder001/2024511200.jpg"_s;
const QImage Copy(30, 20, QImage::Format_RGB32);

StoredPicture newPicture(int entryId)
{
    return { NewPath, u"/home/anna/Bilder/1.jpg"_s, 20, 30, entryId };
}

} // namespace

void TestStoredPicture::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_id = m_catalogue->addPicture(1);
    const std::optional<StoredPicture> stored = readPicture(m_id).picture;
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
    std::optional<StoredPicture> changed = readPicture(other).picture;
    QVERIFY(changed.has_value());
    changed->originalPath = m_catalogue->path(m_picture.copyPath);
    QCOMPARE(updatePicture(other, *changed, QImage()).result, PictureOutcome::Stored);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Datei bleibt stehen"_s));
    QCOMPARE(remove(), QString());
    QCOMPARE(rows(), 1);
    QVERIFY(hasCopy());
}

/// Its entry was deleted in a second window while the picture was chosen.
void TestStoredPicture::pictureOfAVanishedEntryIsNotStored()
{
    const PictureOutcome outcome = insertPicture(newPicture(4711), Copy);
    QCOMPARE(outcome.result, PictureOutcome::StatementFailed);
    QCOMPARE(outcome.errorText, u"Der Eintrag ist nicht mehr vorhanden, er wurde inzwischen gelöscht."_s);
    QCOMPARE(rows(), 1);
    QVERIFY(!QFile::exists(NewPath));
}

void TestStoredPicture::pictureOfAnEntryThatWasNeverStoredIsNotStored()
{
    QCOMPARE(insertPicture(newPicture(0), Copy).result, PictureOutcome::StatementFailed);
    QCOMPARE(rows(), 1);
    QVERIFY(!QFile::exists(NewPath));
}

/// A row with an id beyond 32 bits makes all further ids as large.
/// A second window may have added the sixth while this one was choosing a file.
void TestStoredPicture::seventhPictureIsNotStored()
{
    const int model = m_catalogue->addModel(u"Ae 6/6"_s, m_catalogue->addGroup(u"Gotthard"_s));
    const int entry = m_catalogue->addEntry(u"11407"_s, model);
    while (m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture WHERE locpictureid = %1"_s.arg(entry)).toInt() < 5) {
        m_catalogue->addPicture(entry);
    }
    QCOMPARE(insertPicture(newPicture(entry), Copy).result, PictureOutcome::Stored);
    StoredPicture seventh = newPicture(entry);
    seventh.copyPath = u"./Data/Pictures/Folder001/2024511201.jpg"_s;
    const PictureOutcome outcome = insertPicture(seventh, Copy);
    QCOMPARE(outcome.result, PictureOutcome::StatementFailed);
    QCOMPARE(outcome.errorText, u"Es sind max. 6 Bilder pro Eintrag zulässig!"_s);
    QVERIFY(!QFile::exists(seventh.copyPath));
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture WHERE locpictureid = %1"_s.arg(entry)).toInt(), 6);
}

void TestStoredPicture::pictureWithoutAReadableIdIsNotStored()
{
    QVERIFY(executeWrite(u"UPDATE loc_picture SET id = 4294967297"_s).done);
    const PictureOutcome outcome = insertPicture(newPicture(-1), Copy);
    QCOMPARE(outcome.result, PictureOutcome::StatementFailed);
    QCOMPARE(outcome.errorText, u"Die Datenbank vergibt keine lesbaren Nummern mehr."_s);
    QCOMPARE(rows(), 1);
    QVERIFY(!QFile::exists(NewPath));
}

void TestStoredPicture::pictureOfAGroupNeedsNoEntry()
{
    QCOMPARE(insertPicture(newPicture(-1), Copy).result, PictureOutcome::Stored);
    QCOMPARE(rows(), 2);
    QVERIFY(QFile::exists(NewPath));
}

void TestStoredPicture::vanishedPictureIsNotReplaced()
{
    QVERIFY(executeWrite(u"DELETE FROM loc_picture"_s).done);
    const PictureOutcome outcome = updatePicture(m_id, newPicture(1), Copy);
    QCOMPARE(outcome.result, PictureOutcome::StatementFailed);
    QCOMPARE(outcome.errorText, Missing);
    QVERIFY(!QFile::exists(NewPath));
}

BAHNITO_TEST_MAIN(TestStoredPicture)
#include "tst_storedpicture.moc"
