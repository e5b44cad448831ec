#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

class DialogAnswerer;

/// Uses picture files as the program and its user do, and measures what that costs.
namespace PictureUse {

struct Figures
{
    int readable = 0;
    int slowest = 0; // ms of computing
    double memory = 0; // MB at most
};

/// What is done with a file; true when it is a readable picture.
using Use = std::function<bool(const QString &)>;

void write(const QString &path, const QByteArray &bytes);

/// What the choosing, the preview and the canvas do with a file.
[[nodiscard]] bool readAndStore(const QString &path);

/// What a user does with it: chooses it in the picture form, sees it and saves it. True when it is stored.
[[nodiscard]] bool useInForm(const QString &path, DialogAnswerer &answers);

/// Uses so many files one after the other in a process of its own; `make` writes the file with a number to the path.
/// The test program ends when the process crashes or when a file keeps it waiting.
[[nodiscard]] Figures figuresOf(
    const QString &path, int files, const std::function<void(int)> &make, const Use &use = readAndStore);

} // namespace PictureUse
