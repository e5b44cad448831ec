#pragma once

#include <QDialog>
#include <QList>
#include <QString>

class QComboBox;
class QGroupBox;
class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;
class QSqlRecord;

/// Asks for the class of a group and for the options of a search, or opens the form for a new entry of the class.
/// It does not search: who opened it reads the choices after exec() returned 1. The options are kept in the settings
/// only when they are read out as texts, so that a dialog closed without a search changes nothing.
class OptionDialog final : public QDialog
{
    Q_OBJECT

public:
    /// `classes` are class rows of the group in the order in which they are offered.
    OptionDialog(const QList<QSqlRecord> &classes, int groupId, QWidget *parent = nullptr);

    /// Positions in the boxes, counted from 1.
    [[nodiscard]] int selectedModelNumber() const;
    [[nodiscard]] int repeatChoiceNumber() const;
    [[nodiscard]] int picturesChoiceNumber() const;
    [[nodiscard]] int sortChoiceNumber() const;

    /// Position in the result list, counted from 1, of the first entry to be shown.
    [[nodiscard]] int startEntry() const;

    /// The chosen texts; reading one keeps the choice in the settings.
    QString repeatChoice() const;
    QString picturesChoice() const;
    QString sortChoice() const;

public Q_SLOTS:
    void locModelSelectionChanged();
    void startSearch();
    void startLocCapture();

private:
    void buildWidgets(const QString &groupName);
    QLabel *buildCaption(const QString &groupName);
    QGroupBox *buildModelBox();
    QGroupBox *buildQueryBox();
    QGroupBox *buildCaptureBox();
    QLayout *buildButtonRow();
    void connectWidgets();
    void showModelName();
    void showEntryCount();

    QList<int> m_modelIds; // in the order of the class box
    int m_groupId;
    int m_entryCount = 0; // of the selected class
    QComboBox *m_modelBox;
    QLineEdit *m_countField;
    QComboBox *m_startBox;
    QLineEdit *m_modelField;
    QComboBox *m_repeatBox;
    QComboBox *m_picturesBox;
    QComboBox *m_sortBox;
    QPushButton *m_searchButton;
    QPushButton *m_newButton;
    QPushButton *m_closeButton;
};
