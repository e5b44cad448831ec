#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QString>

#include <functional>

class DialogAnswerer;

/// Uses picture files as the program and its user do, and measures what that costs.
namespace PictureUse {

struct Figures
{
    int tried = 0;
    int readable = 0;
    int slowest = 0; // ms of computing
    double memory = 0; // MB at most

    void add(const Figures &more);
    [[nodiscard]] QString text() const;
};

/// What is done with a file; true when it is a readable picture.
using Use = std::function<bool(const QString &)>;

void write(const QString &path, const QByteArray &bytes);

/// What the choosing, the preview and the canvas do with a file. The program ends when a picture that can be read has
/// no preview or no whole copy of the size that it should have.
[[nodiscard]] bool readAndStore(const QString &path);

/// Small whole pictures in the order of PictureForgery::Sample, with their numbers for names in `folder`.
[[nodiscard]] QList<QByteArray> makeSamples(const QString &folder);

/// The box that a file which is no readable picture brings up.
const QString Unreadable = QStringLiteral("File-Info|Die Datei ist kein lesbares Bild!");

struct FormResult
{
    QString boxes; // "title|text", parted by slashes
    bool isSaved = false;
    QImage copy; // as it was stored
};

/// What a user does with a file: chooses it in the picture form, sees it and saves it. The picture is removed again.
[[nodiscard]] FormResult chooseInForm(const QString &path, DialogAnswerer &answers);

/// The same with a file of which nothing is known but that it is one. True when it is stored.
[[nodiscard]] bool useInForm(const QString &path, DialogAnswerer &answers);

/// Uses so many files one after the other in a process of its own; `make` writes the file with a number to the path.
/// The test program ends and names the file when the process crashes or when a file keeps it waiting, as SleepWatch
/// tells.
[[nodiscard]] Figures figuresOf(
    const QString &path, int files, const std::function<void(int)> &make, const Use &use = readAndStore);

} // namespace PictureUse
