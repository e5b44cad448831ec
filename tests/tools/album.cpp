#include "tests/tools/album.h"

#include "tests/support/modalscript.h"

#include <QTableView>
#include <QTest>
#include <QTextStream>

using namespace Qt::StringLiterals;

void Album::add(QWidget *widget, const QString &name)
{
    widget->activateWindow(); // without a window manager nobody else gives it the keyboard
    QTest::qWait(120); // fonts, icons and the focus are there only after the first events
    const QString path = m_folder.filePath(name + u".png"_s);
    if (!widget->grab().save(path)) {
        qFatal("cannot write %s", qUtf8Printable(path));
    }
    QTextStream(stdout) << path << '\n';
}

void Album::addModal(
    const QString &name, const std::function<void()> &open, const std::function<void(QWidget *)> &prepare)
{
    ModalScript script;
    script.then([&](QWidget *dialog) {
        if (prepare) {
            prepare(dialog);
        }
        add(dialog, name);
        dialog->close();
    });
    open();
    if (!script.problems().isEmpty()) {
        qFatal("%s: %s", qUtf8Printable(name), qUtf8Printable(script.problems().join(u"; "_s)));
    }
}

void Album::clickRow(const QWidget *dialog, int row)
{
    const auto *table = dialog->findChild<QTableView *>();
    if (!table || !table->model()->index(row, 1).isValid()) {
        qFatal("no such row in %s", qUtf8Printable(dialog->windowTitle()));
    }
    const QRect cell = table->visualRect(table->model()->index(row, 1));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell.center());
}
