#include "bench/pagefloor.h"

#include "bench/browsing.h"
#include "bench/measure.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"

#include <QHash>
#include <QImageReader>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

constexpr int Mat = 10; // pixels of the white edge, both sides together

QList<QSqlRecord> records(const QString &statement)
{
    QList<QSqlRecord> list;
    QSqlQuery query;
    query.setForwardOnly(true);
    query.exec(statement);
    while (query.next()) {
        list.append(query.record());
    }
    if (list.isEmpty()) {
        qFatal("A floor found nothing: %s", qUtf8Printable(statement));
    }
    return list;
}

} // namespace

PageFloor::PageFloor(const Browsing &browsing, const SearchParameters &parameters)
{
    const QString model = QString::number(parameters.modelId);
    m_count = u"SELECT COUNT(*) FROM loc_seen WHERE locseenid = '%1'"_s.arg(model);
    m_list = u"SELECT * FROM loc_seen WHERE locseenid = %1 %2 "_s.arg(model, parameters.orderClause);
    if (parameters.once) {
        m_groupedCount = u"SELECT nummer, COUNT(*) FROM loc_seen WHERE locseenid = %1 GROUP BY nummer"_s.arg(model);
    }
    QStringList ids;
    for (const EntryBlock *block : browsing.results().blocks()) {
        ids.append(QString::number(block->card().id));
    }
    m_pictures = u"SELECT * FROM loc_picture WHERE locpictureid IN (%1)"_s.arg(ids.join(u','));
    m_visible = shownPictures(browsing, browsing.view()->items(browsing.view()->viewport()->rect()));
}

double PageFloor::take() const
{
    return elapsed([this] {
        const QList<QSqlRecord> count = records(m_count);
        const QList<QSqlRecord> rows = records(m_list);
        const QList<QSqlRecord> pictures = records(m_pictures);
        if (!m_groupedCount.isEmpty()) {
            const QList<QSqlRecord> numbers = records(m_groupedCount);
        }
        decodePlainly(m_visible);
    });
}

double PageFloor::takeDecoding() const
{
    return elapsed([this] { decodePlainly(m_visible); });
}

QList<ShownPicture> shownPictures(const Browsing &browsing, const QList<QGraphicsItem *> &items)
{
    QHash<QString, QString> copies; // by source
    for (const EntryBlock *block : browsing.results().blocks()) {
        for (const PicturePaths &paths : block->card().pictures) {
            copies.insert(paths.source, paths.copy);
        }
    }
    QList<ShownPicture> pictures;
    for (QGraphicsItem *item : items) {
        if (const auto *picture = qgraphicsitem_cast<Picture *>(item)) {
            const QSize size = picture->frame().size().toSize() - QSize(Mat, Mat);
            pictures.append({ copies.value(picture->sourcePath()), size });
        }
    }
    return pictures;
}

void decodePlainly(const QList<ShownPicture> &pictures)
{
    for (const ShownPicture &picture : pictures) {
        QImageReader reader(picture.path);
        reader.setScaledSize(picture.size);
        if (reader.read().isNull()) {
            qFatal("A floor could not decode %s", qUtf8Printable(picture.path));
        }
    }
}
