#pragma once

#include <QHash>
#include <QIcon>
#include <QMainWindow>

class PictureScrollList;
class QToolBar;
class QToolButton;
class ViewHolder;

/// The main window: the column of group buttons, the canvas, and the actions that concern the whole program.
class ApplWindow final : public QMainWindow
{
    Q_OBJECT

public:
    ApplWindow();
    ~ApplWindow() override;

    /// Row number of the start picture; 0 when the catalogue holds no picture.
    [[nodiscard]] int startPictureNumber() const { return m_randomPicture; }
    [[nodiscard]] ViewHolder &viewHolder() const { return *m_viewHolder; }

public Q_SLOTS:
    void closeAppl();
    void locGroup();
    void aboutApplication();
    void itemColorChanged();
    void backgroundButtonTriggered();
    void updateActions();

private:
    void buildActions();
    void buildColorButton();
    void showButtonColor(const QColor &color);
    void buildToolBars();
    void buildCanvas();
    void registerFonts();
    void buildGroupColumn();
    void orderTabs();
    void drawRandomPicture(int storedPictures);
    void showStartPicture(int storedPictures);
    void redrawCanvas();

    int m_randomPicture = 0;
    QAction *m_exitAction = nullptr;
    QAction *m_groupAction = nullptr;
    QAction *m_aboutAction = nullptr;
    QAction *m_colorAction = nullptr; // the menu entry that the colour button stands for
    QToolButton *m_colorButton = nullptr;
    QHash<QRgb, QIcon> m_colorIcons; // of the button, by its colours so far
    bool m_colorChosen = false; // the user has picked a colour from the menu
    QToolBar *m_toolBar = nullptr; // the one added last
    PictureScrollList *m_scrollList = nullptr;
    QWidget *m_scrollArea = nullptr;
    ViewHolder *m_viewHolder = nullptr;
};
