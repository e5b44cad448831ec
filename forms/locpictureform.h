#pragma once

#include "forms/storedpicture.h"

#include <QDate>
#include <QDialog>

class PicturePreview;
class QGroupBox;
class QLineEdit;
class QPushButton;

/// Lets the user choose one picture file and stores a reduced copy of it with its row, for an entry or for a group.
/// The chosen file itself is only read; a picture that is not saved leaves neither row nor file.
class LocPictureForm final : public QDialog
{
    Q_OBJECT

public:
    /// `pictureId` is -1 for a new picture, `entryId` is -1 for the picture of a group.
    LocPictureForm(int entryId, int pictureId, QWidget *parent = nullptr);
    ~LocPictureForm() override;
    Q_DISABLE_COPY_MOVE(LocPictureForm)

    /// A folder below "./Data/Pictures" that receives the copy in place of the one that the picture store chooses.
    /// A picture that is saved there is taken back when the form is then cancelled. Call before the form runs.
    void setTargetFolder(const QString &folder) { m_targetFolder = folder; }

    /// A new picture has its row and its whole copy.
    [[nodiscard]] bool isSaved() const { return m_saved; }
    /// Also true when the chosen picture has been saved meanwhile.
    [[nodiscard]] bool hasChosenPicture() const { return m_chosen; }
    [[nodiscard]] QString copyPath() const { return m_picture.copyPath; }
    /// Id of the stored picture; -1 while there is none.
    [[nodiscard]] int pictureId() const { return m_pictureId; }
    /// The day on which the chosen file was last changed.
    [[nodiscard]] std::optional<QDate> pictureDate() const { return m_pictureDate; }

    /// Empties both paths; a chosen picture that was not saved is forgotten.
    void clearInputs();

    /// Deletes the row and, unless `keepCopy`, the copy. Nothing happens when there is no such row. A failure is told
    /// to the user; false then.
    static bool deletePicture(int pictureId, bool keepCopy, QWidget *parent = nullptr);

public Q_SLOTS:
    void browsePictures();
    /// Stores the chosen picture, once: further calls do nothing until another one is chosen.
    void addLocPicture();
    void done(int result) override;

private:
    void buildWidgets();
    [[nodiscard]] QGroupBox *buildPictureBox();
    void showPaths();
    void takeChoice(const QString &path, const QImage &copy);
    [[nodiscard]] QString copyFolder() const;
    void takeFreeName();
    void insertChosen();
    void updateStored();
    [[nodiscard]] bool isStored(const PictureOutcome &outcome, const QString &failureTitle);
    void settle();
    void takeBack();

    int m_pictureId;
    StoredPicture m_picture; // what the fields show
    StoredPicture m_storedPicture; // what the row holds
    QImage m_copy; // of a chosen picture that is not saved yet
    std::optional<QDate> m_pictureDate;
    QString m_targetFolder;
    bool m_chosen = false;
    bool m_saved = false;
    QLineEdit *m_copyEdit = nullptr;
    QLineEdit *m_originalEdit = nullptr;
    PicturePreview *m_preview = nullptr;
    QPushButton *m_browseButton = nullptr;
    QPushButton *m_saveButton = nullptr;
};
