#pragma once

#include <QObject>
#include <QPointF>

#include <memory>
#include <vector>

class CanvasView;
class PictureScene;
class QWidget;

/// Owns the canvases and decides which of them the view shows: search results and the start view on the first,
/// all entries of one running number on the second, which is made when it is first asked for.
class ViewHolder final : public QObject
{
    Q_OBJECT

public:
    /// `window` becomes the parent of the view.
    explicit ViewHolder(QWidget *window);
    ~ViewHolder() override;

    [[nodiscard]] CanvasView *view() const { return m_view; }
    [[nodiscard]] PictureScene &results() const { return *m_canvases.front(); }
    [[nodiscard]] PictureScene &current() const { return *m_canvases.at(m_current); }
    [[nodiscard]] bool showsListing() const { return m_current != 0; }

    /// Lets the user choose a class of the group and what to list of it, and lists it.
    void searchGroup(int groupId);

    /// Gives the shown canvas the stored background; the other one follows when it is shown again.
    void paintBackground();

    void showNumberListing(int entryId);
    void backToResults();

private:
    void show(std::size_t canvas);

    std::vector<std::unique_ptr<PictureScene>> m_canvases;
    std::size_t m_current = 0;
    CanvasView *m_view; // belongs to the window
    QPointF m_resultsCentre; // what the view was centred on when the number listing was asked for
    bool m_resultsOutdated = false;
};
