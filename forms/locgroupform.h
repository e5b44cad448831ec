#pragma once

#include <QDialog>
#include <QList>
#include <QString>

class PicturePreview;
class QGroupBox;
class QLayout;
class QLineEdit;
class QPushButton;
class RowList;

/// Two dialogs over the list of class groups: one maintains the groups and their pictures, the other picks the group
/// into which a class is moved. A group's picture is stored through the picture form; deleting a group leaves
/// its picture file alone.
class LocGroupForm final : public QDialog
{
    Q_OBJECT

public:
    /// The maintenance dialog.
    explicit LocGroupForm(QWidget *parent = nullptr);

    /// The move dialog for a class.
    LocGroupForm(int modelId, const QString &modelName, QWidget *parent);

    void done(int result) override;

Q_SIGNALS:
    /// Groups or their pictures may differ from what was shown so far.
    void groupsChanged();

public Q_SLOTS:
    void checktextEdits();
    void addGroup();
    void moveToGroup();
    void showLocPicture();
    void newLocPicture();
    void changeLocPicture();
    void deleteGroup();
    void editLocModel();
    void getTableViewIndex();

private:
    void buildMaintenance();
    void buildMove();
    QLayout *buildNameRow();
    QGroupBox *buildList();
    QGroupBox *buildMaintainedList();
    QLayout *buildPictureColumn();
    void finish(QGroupBox *box, const QString &title);

    QString choosePicture(int &pictureId);
    void dropUnusedPicture();
    void dropPicture(int pictureId, const QString &path);
    void showPicture(const QString &path);
    void readyForNextGroup();
    void tellNothingChosen();
    void warnOfModels();

    int m_modelId = 0; // class to move; 0 in the maintenance dialog
    QString m_modelName;
    bool m_pictureChosen = false; // for the group about to be added
    QString m_picturePath;
    int m_unusedPictureId = -1; // of an assigned picture that no group has yet
    RowList *m_groupList = nullptr;
    QLineEdit *m_nameEdit = nullptr;
    QPushButton *m_saveButton = nullptr;
    QPushButton *m_assignButton = nullptr;
    QPushButton *m_changeButton = nullptr;
    QList<QPushButton *> m_rowButtons; // enabled by a click on a row
    PicturePreview *m_preview = nullptr;
};
