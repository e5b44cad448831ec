#include "browser/canvastexts.h"

#include "search/textcut.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("PictureScene", text);
}

} // namespace

QString CanvasTexts::shown(const QString &stored)
{
    QString text = shownText(stored);
    for (QChar &character : text) {
        const QChar::Category category = character.category();
        const bool breaksLine = category == QChar::Separator_Line || category == QChar::Separator_Paragraph;
        if (category == QChar::Other_Control || breaksLine || character == QChar::ObjectReplacementCharacter) {
            character = u' ';
        }
    }
    return text;
}

QString CanvasTexts::date(const QDate &date)
{
    return date.isValid() ? date.toString(u"dd.MM.yyyy"_s) : tr("Datum unbekannt");
}

QString CanvasTexts::pageLabel(int entries, int position, bool once)
{
    if (entries <= 40 || position < 1) {
        return {};
    }
    if (position == 1) {
        return once ? tr("20*n von") : tr("40 von");
    }
    return once ? tr("Weitere 20*n von") : tr("Weitere 40 von");
}

QString CanvasTexts::progressLabel(int entries, int position, bool once)
{
    return tr("%1 %2 Einträge laden...").arg(pageLabel(entries, position, once), QString::number(entries));
}

QString CanvasTexts::listingProgressLabel(int entries)
{
    return tr("%1 Einträge laden...").arg(entries);
}

QString CanvasTexts::resultCaption(int entries, const QString &modelName)
{
    const QString noun = entries == 1 ? tr("Eintrag") : tr("Einträge");
    return u"%1 %2 %3"_s.arg(QString::number(entries), tr("%1 der Baureihe").arg(noun), shown(modelName));
}

QString CanvasTexts::listingCaption(int entries, const QString &modelName, const QString &number)
{
    return u"%1 %2 %3"_s.arg(QString::number(entries), tr("Einträge der %1").arg(shown(modelName)), shown(number));
}

QString CanvasTexts::pictureCount(int pictures)
{
    if (pictures == 0) {
        return tr("keine Bilder");
    }
    return pictures == 1 ? tr("1 Bild") : tr("%1 Bilder").arg(pictures);
}

QString CanvasTexts::picturesShown(int first, int pictures)
{
    if (pictures <= 2) {
        return pictureCount(pictures);
    }
    const int last = qMin(first + 2, pictures);
    if (last == first + 1) {
        return pictureName(first, pictures);
    }
    return tr("Bilder %1 und %2 von %3").arg(first + 1).arg(last).arg(pictures);
}

QString CanvasTexts::pictureName(int index, int pictures)
{
    return tr("Bild %1 von %2").arg(index + 1).arg(pictures);
}
