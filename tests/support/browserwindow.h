#pragma once

#include "app/applwindow.h"
#include "browser/buttonitem.h"
#include "tests/support/testcatalogue.h"

#include <QStringList>

#include <memory>

class EntryBlock;
class ModalScript;
class Picture;
class PictureScene;
class QGraphicsItem;

/// What a user picks in the search options dialog.
struct SearchWish
{
    QString model; // empty takes the first class
    QString repeat = QStringLiteral("immer");
    QString pictures = QStringLiteral("nein alle");
    QString sort = QStringLiteral("Datum");
    QString start = QStringLiteral("1");
};

/// The real main window on a real catalogue, used as a person uses it: by mouse clicks on what is to be seen.
class BrowserWindow final
{
public:
    BrowserWindow();
    ~BrowserWindow();
    Q_DISABLE_COPY_MOVE(BrowserWindow)

    [[nodiscard]] ApplWindow &window() const { return *m_window; }
    [[nodiscard]] PictureScene &canvas() const;

    /// Clicks the group's button and answers the search options dialog; returns what was not as expected.
    QStringList search(int groupId, const SearchWish &wish = {});

    /// Gives the window the keyboard, as the desktop does when a dialog has closed.
    void activate();

    void clickGroup(int groupId);
    void click(QGraphicsItem *item);
    void doubleClick(QGraphicsItem *item);

    /// Text of the first text item at the caption's place; empty when there is none.
    [[nodiscard]] QString caption() const;
    [[nodiscard]] QStringList numbers() const;
    [[nodiscard]] QStringList texts() const;

    /// The button of that kind on the block, or on the canvas itself when `block` is null; null when there is none.
    [[nodiscard]] ButtonItem *button(ButtonKind kind, const EntryBlock *block = nullptr) const;
    [[nodiscard]] EntryBlock *block(int index) const;
    [[nodiscard]] QList<Picture *> photos(const EntryBlock *block) const;

    /// Picks the entry of the colour menu with this text.
    void pickColor(const QString &name);

private:
    std::unique_ptr<ApplWindow> m_window;
};
