#pragma once

#include "app/applwindow.h"
#include "bench/paintwatch.h"
#include "browser/buttonitem.h"
#include "browser/searchparameters.h"

#include <QString>

#include <memory>

class CanvasView;
class PictureScene;

/// What a user chooses in the search dialog.
struct SearchWish
{
    int modelId = 0;
    QString sort;
    bool once = false;
    bool picturesOnly = false;

    [[nodiscard]] SearchParameters parameters() const;
};

/// The program's main window on the catalogue in the working folder, with what the measurements do in it.
class Browsing final
{
public:
    Browsing();
    ~Browsing();
    Q_DISABLE_COPY_MOVE(Browsing)

    [[nodiscard]] ViewHolder &holder() const;
    [[nodiscard]] CanvasView *view() const;
    [[nodiscard]] PictureScene &results() const;
    [[nodiscard]] PaintWatch &watch() { return *m_watch; }

    /// Shows the first page of what is wished for, without the dialog.
    void search(const SearchWish &wish);

    /// Answers the real search dialog. Milliseconds from the press on "Suchen" to the painted page.
    [[nodiscard]] double searchInDialog(const SearchWish &wish);

    /// Changes the comment of the page's first entry in its real form. Milliseconds from the moment when the entry is
    /// stored and its form closes to the painted page.
    [[nodiscard]] double editFirstEntry();

    /// Looks at the page as a person does before the next press; the program has nothing to do meanwhile.
    static void look();

    /// Presses a button of the canvas and waits until its effect is painted.
    void press(ButtonItem *button);
    void pressMore();

private:
    std::unique_ptr<ApplWindow> m_window;
    PaintWatch *m_watch; // belongs to the view
};

/// The first button of the kind among `items`; there must be one.
[[nodiscard]] ButtonItem *findButton(const QList<QGraphicsItem *> &items, ButtonKind kind);
