#pragma once

#include "search/picturestore.h"
#include "store/colorscheme.h"

#include <QFont>
#include <QList>
#include <QRectF>
#include <QSizeF>
#include <QStringList>

#include <optional>

class QGraphicsItem;
class QGraphicsScene;
class QGraphicsView;

/// A font of the canvas texts. Creating the record sets the font's pixel size unless it has it already.
struct FontRecord
{
    FontRecord(
        const QFont &font, int divisor, const QRectF &rect, const QString &styleWord, int pointSize, int pixelSize);

    bool valid = true;
    QFont font;
    int divisor;
    QRectF rect;
    QString styleWord; // "bold" or "italic"
    int pointSize;
    int pixelSize;
};

struct QueryValue
{
    int value;
    QString name;
    bool isKnown = true; // false while the stored value could not be read and no other was chosen
};

/// The user's choices as loaded from the settings table, with the colours and fonts that follow from them and the
/// items that stand on the canvases. Changes reach the database only in saveAndRelease(); a value that could not be
/// read is left there as it is, unless the user has made another choice.
class ColorSetting final
{
public:
    /// The single object, made on the first call; the database must be open by then.
    static ColorSetting &instance();

    /// Writes the settings back and destroys the object; a later instance() makes a new one.
    static void saveAndRelease();

    ~ColorSetting();
    Q_DISABLE_COPY_MOVE(ColorSetting)

    /// The stored value; 0 when there is no such row.
    [[nodiscard]] static int readSetting(const QString &category, const QString &name);

    /// Updates an existing row; a key without a row stays missing. A failure goes to the debug output only.
    static void writeSetting(const QString &category, const QString &name, int value);

    /// The choice kept under `name`. An unknown name yields the last value of the list, an empty list 0.
    [[nodiscard]] int queryValue(const QString &name) const;

    /// Changes nothing when the name is unknown.
    void setQueryValue(const QString &name, int value);

    [[nodiscard]] const ColorScheme &scheme() const { return m_scheme; }
    void setBackground(const QColor &color);

    /// Position of the background in the palette; 0 when it is none of its colours.
    [[nodiscard]] int backgroundIndex() const;

    [[nodiscard]] QStringList families() const { return m_families; }
    [[nodiscard]] QString fontFamily() const { return m_fontFamily; }
    [[nodiscard]] QStringList preferredFamilies() const { return m_preferredFamilies; }
    [[nodiscard]] const QList<FontRecord> &fonts() const { return m_fonts; }

    void addFont(
        const QFont &font, int divisor, const QRectF &rect, const QString &styleWord, int pointSize, int pixelSize);

    /// The recorded font, or the preferred family in its default size where there is no valid record.
    [[nodiscard]] QFont fontAt(int index) const;

    /// Divisor of the first valid record with this font; 0 when there is none.
    [[nodiscard]] int divisorOf(const QFont &font) const;

    /// Width and height of one character; both 0 for an invalid or missing record.
    [[nodiscard]] QSizeF charMetrics(int index) const;

    [[nodiscard]] PictureStore &pictureStore() { return m_pictureStore; }

    /// Hands over a top-level item of a canvas; it is deleted by clearItems() or with this object.
    void addItem(QGraphicsItem *item) { m_items.append(item); }
    [[nodiscard]] const QList<QGraphicsItem *> &items() const { return m_items; }
    void clearItems();

    /// Deletes the items that stand on `canvas`. Does nothing once the settings are released.
    static void clearItemsOf(const QGraphicsScene *canvas);

    /// The main window's view of the canvases, and whether the last search shows each number once. Not saved.
    void setView(QGraphicsView *view) { m_view = view; }
    [[nodiscard]] QGraphicsView *view() const { return m_view; }
    void setOnce(bool once) { m_once = once; }
    [[nodiscard]] bool once() const { return m_once; }

private:
    ColorSetting();
    explicit ColorSetting(const std::optional<int> &background); // the stored index, none when it could not be read
    void save() const;
    [[nodiscard]] bool hasFont(int index) const;

    bool m_isBackgroundKnown = true; // as isKnown of a query value
    ColorScheme m_scheme;
    QStringList m_families; // what the system offers for the Latin writing system
    QString m_fontFamily;
    QStringList m_preferredFamilies;
    QList<FontRecord> m_fonts;
    PictureStore m_pictureStore;
    QList<QueryValue> m_queryValues;
    QList<QGraphicsItem *> m_items; // owned
    QGraphicsView *m_view = nullptr; // belongs to the main window, which outlives this object
    bool m_once = false;
};
