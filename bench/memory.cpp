#include "bench/memory.h"

#include "bench/benchcatalogue.h"
#include "bench/browsing.h"
#include "bench/firstpaint.h"
#include "browser/canvasview.h"
#include "browser/picturescene.h"

#include <QDir>
#include <QPixmap>
#include <QScrollBar>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr int PicturesOfAPage = 240;

void scrollThrough(
    Browsing &browsing, const std::function<void()> &pause = [] {})
{
    QScrollBar *bar = browsing.view()->verticalScrollBar();
    while (bar->value() < bar->maximum()) {
        bar->setValue(bar->value() + bar->pageStep());
        browsing.watch().waitForPaint();
        pause();
    }
}

} // namespace

int Memory::ofScrolledPage()
{
    Browsing browsing;
    const int before = residentKb();
    browsing.search({ BenchCatalogue::FullClass, u"Datum"_s, false, false });
    Browsing::look(); // so that what is decoded ahead counts
    scrollThrough(browsing, Browsing::look);
    return residentKb() - before;
}

int Memory::ofHeldPictures()
{
    QList<QPixmap> pixmaps;
    const int before = residentKb();
    const QDir folder(u"./Data/Pictures/Folder001"_s);
    const QStringList files = folder.entryList({ u"*.jpg"_s }, QDir::Files);
    while (pixmaps.size() < PicturesOfAPage) {
        pixmaps.append(QPixmap(folder.filePath(files.at(pixmaps.size() % files.size()))));
    }
    return residentKb() - before;
}

double Memory::growthOverPages(int pages)
{
    Browsing browsing;
    browsing.search({ BenchCatalogue::LongestClass, u"Datum"_s, false, false });
    scrollThrough(browsing);
    const int first = residentKb();
    for (int page = 1; page < pages; ++page) {
        browsing.results().loadPage(true);
        browsing.watch().waitForPaint();
        scrollThrough(browsing);
    }
    if (browsing.results().blocks().isEmpty()) {
        qFatal("The class has too few pages.");
    }
    return double(residentKb()) / first;
}
