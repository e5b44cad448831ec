#pragma once

#include <QDialog>

class QGroupBox;
class QLayout;
class QLineEdit;
class QPushButton;
class RowList;

/// Maintains the classes of one group: adds a class, moves one into another group, deletes one without entries.
/// For a group that does not exist it lists nothing and refuses new classes, which nobody would ever see again.
class LocModelForm final : public QDialog
{
    Q_OBJECT

public:
    explicit LocModelForm(int groupId, QWidget *parent = nullptr);

public Q_SLOTS:
    void checktextEdits();
    void addModel();
    void moveModel();
    void deleteModel();
    void getTableViewIndex();

private:
    void buildWidgets();
    QLayout *buildNameRow();
    QGroupBox *buildList();
    void connectWidgets();
    void refuseNewModels();

    int m_groupId;
    QLineEdit *m_nameEdit;
    RowList *m_modelList;
    QPushButton *m_saveButton;
    QPushButton *m_moveButton;
    QPushButton *m_deleteButton;
};
