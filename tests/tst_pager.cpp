#include "browser/pager.h"

#include <QList>
#include <QTest>

#include <functional>

namespace {

struct PageRun
{
    int drawn = 0;
    int lastRow = -1; // index of the last row the page took
    bool more = false;
    int nextPosition = 0;
};

/// Steps one page as the canvas does; `isNew` says whether a row's number was not shown before.
PageRun runPage(int position, int rows, bool once, const std::function<bool(int)> &isNew,
    const std::function<bool(int)> &nextHasSameNumber)
{
    Pager pager(position, rows, once);
    PageRun run;
    for (int i = 0; i < rows; ++i) {
        if (!pager.takes(i)) {
            continue;
        }
        run.lastRow = i;
        if (isNew(i)) {
            pager.countBlock();
            ++run.drawn;
        }
        if (pager.endsPage(nextHasSameNumber(i))) {
            run.more = i + 1 < rows;
            break;
        }
    }
    run.nextPosition = pager.position();
    return run;
}

bool always(int)
{
    return true;
}
bool never(int)
{
    return false;
}

} // namespace

class TestPager final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pageEndsAfterFortyPositions_data();
    void pageEndsAfterFortyPositions();
    void secondPageGoesOnWhereTheFirstStopped();
    void startBehindTheLastEntryTakesNothing();
    void onceModeWithDifferentNumbersStillEndsAfterForty();
    void onceModeRunsOnUntilTwentyNumbersAreDrawn();
    void onceModeDoesNotSplitANumber();
    void onceModeWithTooFewNumbersRunsToTheEnd();
};

void TestPager::pageEndsAfterFortyPositions_data()
{
    QTest::addColumn<int>("entries");
    QTest::addColumn<int>("shown");
    QTest::addColumn<bool>("more");
    QTest::newRow("nothing") << 0 << 0 << false;
    QTest::newRow("one") << 1 << 1 << false;
    QTest::newRow("exactly one page has no more button") << 40 << 40 << false;
    QTest::newRow("one entry over brings the more button") << 41 << 40 << true;
    QTest::newRow("long class") << 1000 << 40 << true;
}

void TestPager::pageEndsAfterFortyPositions()
{
    QFETCH(int, entries);
    const PageRun run = runPage(1, entries, false, always, never);
    QTEST(run.drawn, "shown");
    QTEST(run.more, "more");
}

void TestPager::secondPageGoesOnWhereTheFirstStopped()
{
    const PageRun first = runPage(1, 100, false, always, never);
    QCOMPARE(first.nextPosition, 41);
    const PageRun second = runPage(first.nextPosition, 100, false, always, never);
    QCOMPARE(second.drawn, 40);
    QCOMPARE(second.lastRow, 79);
    QVERIFY(second.more);
    const PageRun third = runPage(second.nextPosition, 100, false, always, never);
    QCOMPARE(third.drawn, 20);
    QVERIFY(!third.more);
}

void TestPager::startBehindTheLastEntryTakesNothing()
{
    const PageRun run = runPage(121, 120, false, always, never);
    QCOMPARE(run.drawn, 0);
    QVERIFY(!run.more);
}

void TestPager::onceModeWithDifferentNumbersStillEndsAfterForty()
{
    const PageRun run = runPage(1, 100, true, always, never);
    QCOMPARE(run.drawn, 40);
    QVERIFY(run.more);
}

void TestPager::onceModeRunsOnUntilTwentyNumbersAreDrawn()
{
    // Each number stands in ten rows: the twentieth number begins at row 190 and ends at row 199.
    const auto isNew = [](int row) { return row % 10 == 0; };
    const auto same = [](int row) { return row % 10 != 9; };
    const PageRun run = runPage(1, 1000, true, isNew, same);
    QCOMPARE(run.drawn, 20);
    QCOMPARE(run.lastRow, 199);
    QVERIFY(run.more);
}

void TestPager::onceModeDoesNotSplitANumber()
{
    // Rows 38 to 44 have one number; all others differ.
    const auto isNew = [](int row) { return row <= 38 || row > 44; };
    const auto same = [](int row) { return row >= 38 && row < 44; };
    const PageRun run = runPage(1, 100, true, isNew, same);
    QCOMPARE(run.lastRow, 44);
    QCOMPARE(run.nextPosition, 46);
}

void TestPager::onceModeWithTooFewNumbersRunsToTheEnd()
{
    const auto isNew = [](int row) { return row < 5; };
    const PageRun run = runPage(1, 300, true, isNew, never);
    QCOMPARE(run.drawn, 5);
    QCOMPARE(run.lastRow, 299);
    QVERIFY(!run.more);
}

QTEST_APPLESS_MAIN(TestPager)
#include "tst_pager.moc"
