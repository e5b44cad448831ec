#include "store/colorsetting.h"

#include "store/statement.h"
#include "store/transaction.h"

#include <QDebug>
#include <QFontDatabase>
#include <QGraphicsItem>
#include <QSqlError>
#include <QSqlQuery>

#include <memory>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString ColorCategory = u"COLOR-SETTING"_s;
const QString ColorName = u"BG_COLOR"_s;
const QString QueryCategory = u"QUERY-Type"_s;

std::unique_ptr<ColorSetting> &single()
{
    static std::unique_ptr<ColorSetting> object;
    return object;
}

/// 0 when there is no such row; nothing when the row could not be read.
std::optional<int> storedValue(const QString &category, const QString &name)
{
    QSqlQuery query;
    query.exec(u"SELECT * FROM settings WHERE category = '%1' AND name = '%2'"_s.arg(category, name));
    const int value = query.next() ? query.value(u"value"_s).toInt() : 0;
    if (query.lastError().isValid()) {
        qDebug().noquote() << query.lastError().text();
        return {};
    }
    return value;
}

QColor backgroundAt(int index)
{
    const QList<QColor> &palette = ColorScheme::palette();
    return palette.value(index, palette.first());
}

} // namespace

FontRecord::FontRecord(const QFont &recordFont, int recordDivisor, const QRectF &recordRect, const QString &style,
    int recordPointSize, int recordPixelSize)
    : font(recordFont)
    , divisor(recordDivisor)
    , rect(recordRect)
    , styleWord(style)
    , pointSize(recordPointSize)
    , pixelSize(recordPixelSize)
{
    if (font.pixelSize() != pixelSize) {
        font.setPixelSize(pixelSize);
    }
}

ColorSetting &ColorSetting::instance()
{
    if (!single()) {
        single().reset(new ColorSetting); // the constructor is private, so make_unique cannot reach it
    }
    return *single();
}

void ColorSetting::saveAndRelease()
{
    if (single()) {
        single()->save();
        single().reset();
    }
}

ColorSetting::ColorSetting()
    : ColorSetting(storedValue(ColorCategory, ColorName))
{ }

ColorSetting::ColorSetting(const std::optional<int> &background)
    : m_isBackgroundKnown(background.has_value())
    , m_scheme(backgroundAt(background.value_or(0)))
    , m_families(QFontDatabase::families(QFontDatabase::Latin))
    , m_preferredFamilies { u"IrisUPC"_s, u"French Script MT"_s, u"Comic Sans MS"_s, u"Bradley Hand ITC"_s, u"Batang"_s,
        u"Arabic Typesetting"_s, u"Arial"_s }
{
    m_fontFamily = m_preferredFamilies.first();
    const QStringList names { u"SingleOrMulti"_s, u"InclPictures"_s, u"Sort"_s };
    for (const QString &name : names) {
        const std::optional<int> value = storedValue(QueryCategory, name);
        m_queryValues.append({ value.value_or(0), name, value.has_value() });
    }
}

ColorSetting::~ColorSetting()
{
    clearItems();
    for (int i = 0; i < m_fonts.size(); ++i) {
        const QSizeF character = charMetrics(i);
        qDebug() << m_fonts.at(i).font.family() << "- W/H 1 Char:" << character.width() << character.height()
                 << "- Ps:" << m_fonts.at(i).font.pixelSize();
    }
    qDebug() << "ColorSetting Dtor done!";
}

int ColorSetting::readSetting(const QString &category, const QString &name)
{
    return storedValue(category, name).value_or(0);
}

void ColorSetting::writeSetting(const QString &category, const QString &name, int value)
{
    const WriteOutcome outcome
        = runWrite(u"UPDATE settings SET value = :val WHERE category = '%1' AND name = '%2'"_s.arg(category, name),
            { { u":val"_s, value } });
    if (!outcome.done) {
        qDebug() << outcome.errorText;
    }
}

int ColorSetting::queryValue(const QString &name) const
{
    for (const QueryValue &pair : m_queryValues) {
        if (pair.name == name) {
            return pair.value;
        }
    }
    return m_queryValues.isEmpty() ? 0 : m_queryValues.last().value;
}

void ColorSetting::setQueryValue(const QString &name, int value)
{
    for (QueryValue &pair : m_queryValues) {
        if (pair.name == name) {
            pair.value = value;
            pair.isKnown = true;
            return;
        }
    }
}

void ColorSetting::setBackground(const QColor &color)
{
    m_scheme = ColorScheme(color);
    m_isBackgroundKnown = true;
}

int ColorSetting::backgroundIndex() const
{
    return qMax(0, int(ColorScheme::palette().indexOf(m_scheme.background())));
}

void ColorSetting::addFont(
    const QFont &font, int divisor, const QRectF &rect, const QString &styleWord, int pointSize, int pixelSize)
{
    m_fonts.append(FontRecord(font, divisor, rect, styleWord, pointSize, pixelSize));
}

QFont ColorSetting::fontAt(int index) const
{
    return hasFont(index) ? m_fonts.at(index).font : QFont(m_preferredFamilies.first());
}

int ColorSetting::divisorOf(const QFont &font) const
{
    for (const FontRecord &record : m_fonts) {
        if (record.valid && record.font == font) {
            return record.divisor;
        }
    }
    return 0;
}

QSizeF ColorSetting::charMetrics(int index) const
{
    if (!hasFont(index)) {
        return { 0, 0 };
    }
    const FontRecord &record = m_fonts.at(index);
    return { record.rect.width() / record.divisor, record.rect.height() };
}

void ColorSetting::clearItems()
{
    qDeleteAll(std::exchange(m_items, {}));
}

void ColorSetting::clearItemsOf(const QGraphicsScene *canvas)
{
    if (!single()) {
        return;
    }
    QList<QGraphicsItem *> &items = single()->m_items;
    items.removeIf([canvas](QGraphicsItem *item) {
        if (item->scene() != canvas) {
            return false;
        }
        delete item;
        return true;
    });
}

void ColorSetting::save() const
{
    Transaction transaction; // one wait for the disk instead of four
    if (!transaction.isOpen()) {
        qDebug() << transaction.errorText();
        return;
    }
    if (m_isBackgroundKnown) {
        writeSetting(ColorCategory, ColorName, backgroundIndex());
    }
    for (const QueryValue &pair : m_queryValues) {
        if (pair.isKnown) {
            writeSetting(QueryCategory, pair.name, pair.value);
        }
    }
    if (!transaction.commit()) {
        qDebug() << transaction.errorText();
    }
}

bool ColorSetting::hasFont(int index) const
{
    return index >= 0 && index < m_fonts.size() && m_fonts.at(index).valid;
}
