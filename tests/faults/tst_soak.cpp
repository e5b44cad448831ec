#include "app/startup.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/faults/soakrun.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QStringList reported(const ForkedRun::End &end, const QString &tag)
{
    QStringList texts;
    for (const QString &line : end.lines) {
        if (line.startsWith(tag + u'\t')) {
            texts.append(line.mid(tag.size() + 1));
        }
    }
    return texts;
}

QMap<QString, int> counts(const ForkedRun::End &end, const QString &tag)
{
    QMap<QString, int> counts;
    RandomUser::addDeeds(counts, reported(end, tag));
    return counts;
}

} // namespace

/// A user who never stops.
class TestSoak final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingGrowsAndNothingIsLeftOver();

private:
    static void checkDeeds(const ForkedRun::End &end, int actions);
    static void checkWrites(const ForkedRun::End &end, int actions);
    static void checkMemory(const ForkedRun::End &end);

    FaultFolder m_folder;
};

void TestSoak::nothingGrowsAndNothingIsLeftOver()
{
    const int actions = share(2000, 100000);
    const int stretch = actions / 100;
    const quint32 seed = testSeed(1);
    QVERIFY(runForked([this] {
        makeSampleCatalogue(m_folder.path(u"work"_s));
        makeSamplePhotographs(m_folder.path(u"photographs"_s));
    }).isGood());
    const QByteArray photographs = folderDigest(m_folder.path(u"photographs"_s));
    const ForkedRun::End end = runForked(
        [&] {
            QDir::setCurrent(m_folder.path(u"work"_s));
            Startup::dress(); // with it the limits that the program sets itself
            SoakRun soak(seed, m_folder.path(u"photographs"_s));
            for (int i = 0; i < actions; ++i) {
                soak.act();
                if (i % stretch == 0) {
                    soak.look(i, i / stretch);
                }
            }
            soak.report();
        },
        6 * 3600000);
    qInfo("%d actions", actions);
    for (const QString &tag : { u"deed"_s, u"box"_s, u"write"_s, u"belief"_s }) {
        qInfo("%s: %s", qPrintable(tag), qPrintable(reported(end, tag).join(u", "_s)));
    }
    QVERIFY2(end.isGood(), qPrintable(end.description()));
    QCOMPARE(reported(end, u"finding"_s).join(u'\n'), QString());
    checkDeeds(end, actions);
    checkWrites(end, actions);
    checkMemory(end);
    QCOMPARE(damages(m_folder.path(u"work"_s)), QStringList());
    QCOMPARE(folderDigest(m_folder.path(u"photographs"_s)), photographs);
}

/// Else nothing could have grown.
void TestSoak::checkDeeds(const ForkedRun::End &end, int actions)
{
    const RandomUser::Deeds deeds = counts(end, u"deed"_s);
    QCOMPARE(deeds.size(), 9); // six forms, searches, listings and deletions
    for (const auto &[deed, times] : deeds.asKeyValueRange()) {
        QVERIFY2(times > actions / 200, qPrintable(deed));
    }
}

/// Each save without a box has come to its table, and nothing was added or moved that nobody had saved.
void TestSoak::checkWrites(const ForkedRun::End &end, int actions)
{
    const QMap<QString, int> writes = counts(end, u"write"_s);
    const QMap<QString, int> saves = counts(end, u"belief"_s);
    const QStringList saved { u"INSERT loc_model"_s, u"INSERT loc_picture"_s, u"INSERT loc_seen"_s,
        u"INSERT locomotive"_s, u"UPDATE loc_model"_s, u"UPDATE loc_seen"_s };
    const QStringList deleted { u"DELETE loc_model"_s, u"DELETE loc_picture"_s, u"DELETE loc_seen"_s,
        u"DELETE locomotive"_s, u"UPDATE locomotive"_s };
    for (const QString &kind : saved + deleted) {
        QVERIFY2(writes.value(kind) > actions / 20000, qPrintable(kind)); // groups are hardly ever without a class
    }
    for (const QString &kind : saved) {
        const bool isExact = kind != u"INSERT loc_picture"_s; // a group's picture is also stored without a save
        QVERIFY2(writes.value(kind) >= saves.value(kind), qPrintable(kind));
        QVERIFY2(!isExact || writes.value(kind) == saves.value(kind), qPrintable(kind));
    }
}

void TestSoak::checkMemory(const ForkedRun::End &end)
{
    const QString memory = reported(end, u"memory"_s).value(0);
    qInfo("memory %s", qPrintable(memory));
    const QStringList words = memory.split(u' ');
    const double allowed = isSanitized() ? 1e6 : 5; // MB; sanitizers keep what was freed
    QVERIFY2(words.value(3).toDouble() - words.value(0).toDouble() < allowed, qPrintable(memory));
}

BAHNITO_TEST_MAIN(TestSoak)
#include "tst_soak.moc"
