#pragma once

#include <QDate>
#include <QDialog>
#include <QSqlRecord>

#include <optional>

class PicturePreview;
class PictureTable;
class QDateEdit;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QTextEdit;
struct WriteOutcome;

/// Records one sighting or edits a stored one, and manages its pictures. Closing writes the pending changes of a stored
/// entry without asking; a new entry that was never saved is dropped.
class LocseenForm final : public QDialog
{
    Q_OBJECT

public:
    /// `entryId` is -1 for a new entry, which then belongs to the class `modelId`.
    LocseenForm(int entryId, int modelId, QWidget *parent = nullptr);
    ~LocseenForm() override;
    Q_DISABLE_COPY_MOVE(LocseenForm)

    /// After the form was closed: whether the entry or its pictures are no longer what they were.
    [[nodiscard]] bool hasChanged() const { return m_changed; }

public Q_SLOTS:
    void checktextEdits();
    void addLocseen();
    void showLocPicture();
    void newLocPicture();
    void deleteLocPicture();
    void getTableViewIndex();
    void done(int result) override;

private:
    void buildWidgets();
    void buildFields();
    [[nodiscard]] QGroupBox *buildEntryBox();
    [[nodiscard]] QGroupBox *buildPictureBox();
    void setTabOrders();
    void connectWidgets();
    void showEntry();
    void lockTexts();
    void keepAsStored();
    [[nodiscard]] bool isEdited() const;
    [[nodiscard]] QString commentText() const;
    [[nodiscard]] QSqlRecord fieldValues() const;
    [[nodiscard]] QSqlRecord editedRow(const QSqlRecord &stored) const;
    void insertEntry();
    WriteOutcome storeEdits();
    bool updateEntry();
    void takePictureDate(const QDate &date);
    void showPicture(const QString &path);
    void tellNothingChosen();

    int m_entryId; // 0 while the entry is not stored
    int m_modelId;
    QString m_storedNumber; // as the widgets gave them back when they were filled or written
    QString m_storedPlace;
    QString m_storedComment;
    std::optional<QDate> m_storedSeenDate; // none for a new entry
    QSqlRecord m_row; // as the row was read or written last; empty for a new entry
    bool m_isNew;
    bool m_editable = true; // edits test "Speichern" anew
    bool m_modified = false; // something has been written
    bool m_changed = false;
    bool m_closingFailed = false; // closing was refused once, because the edits could not be stored
    QLineEdit *m_numberEdit = nullptr;
    QLineEdit *m_placeEdit = nullptr;
    QTextEdit *m_commentEdit = nullptr;
    QDateEdit *m_seenDateEdit = nullptr;
    QDateEdit *m_startDateEdit = nullptr;
    QLineEdit *m_modelEdit = nullptr;
    PictureTable *m_pictureTable = nullptr;
    PicturePreview *m_preview = nullptr;
    QPushButton *m_saveButton = nullptr;
    QPushButton *m_showButton = nullptr;
    QPushButton *m_newButton = nullptr;
    QPushButton *m_removeButton = nullptr;
};
