#include "bench/browsing.h"

#include "bench/benchcatalogue.h"
#include "bench/firstpaint.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"
#include "search/entrysearch.h"
#include "search/searchchoice.h"
#include "store/catalogquery.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QEventLoop>
#include <QPushButton>
#include <QTextEdit>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

/// The child of that name; there must be one.
template <typename Widget> Widget *part(const QWidget *dialog, const QString &name)
{
    auto *widget = dialog ? dialog->findChild<Widget *>(name) : nullptr;
    if (!widget) {
        qFatal("%s is not there.", qUtf8Printable(name));
    }
    return widget;
}

void choose(const QWidget *dialog, const QString &box, QStringView text)
{
    part<QComboBox>(dialog, box)->setCurrentText(text.toString());
}

void fillIn(const QWidget *dialog, const SearchWish &wish)
{
    auto *models = part<QComboBox>(dialog, u"modelBox"_s);
    models->setCurrentIndex(models->findData(CatalogQuery::instance().modelName(wish.modelId)));
    choose(dialog, u"repeatBox"_s, wish.once ? SearchChoice::Once : SearchChoice::Always);
    choose(dialog, u"picturesBox"_s, wish.picturesOnly ? SearchChoice::WithPictures : SearchChoice::AllEntries);
    choose(dialog, u"sortBox"_s, wish.sort);
}

/// Does `answer` with the dialog that is about to open.
template <typename Answer> void answerDialog(Answer answer)
{
    QMetaObject::invokeMethod(
        qApp, [answer] { answer(qobject_cast<QDialog *>(QApplication::activeModalWidget())); }, Qt::QueuedConnection);
}

} // namespace

SearchParameters SearchWish::parameters() const
{
    SearchParameters parameters;
    parameters.modelId = modelId;
    parameters.once = once;
    parameters.picturesOnly = picturesOnly;
    parameters.orderClause = orderClause(sort, once);
    return parameters;
}

Browsing::Browsing()
    : m_window(std::make_unique<ApplWindow>())
    , m_watch(new PaintWatch(view()))
{
    m_window->show();
    m_watch->waitForPaint();
}

Browsing::~Browsing() = default;

ViewHolder &Browsing::holder() const
{
    return m_window->viewHolder();
}

CanvasView *Browsing::view() const
{
    return holder().view();
}

PictureScene &Browsing::results() const
{
    return holder().results();
}

void Browsing::search(const SearchWish &wish)
{
    results().startSearch(wish.parameters(), 1);
    m_watch->waitForPaint();
}

double Browsing::searchInDialog(const SearchWish &wish)
{
    double pressedAt = 0;
    answerDialog([&pressedAt, &wish](const QDialog *dialog) {
        fillIn(dialog, wish);
        auto *button = part<QPushButton>(dialog, u"searchButton"_s);
        pressedAt = nowMs();
        button->click();
    });
    holder().searchGroup(BenchCatalogue::groupOf(wish.modelId));
    m_watch->waitForPaint();
    return nowMs() - pressedAt;
}

double Browsing::editFirstEntry()
{
    double closedAt = 0;
    holder().current().activate(findButton(results().blocks().first()->childItems(), ButtonKind::Edit));
    answerDialog([&closedAt](const QDialog *form) {
        auto *comment = part<QTextEdit>(form, u"commentEdit"_s);
        comment->setPlainText(comment->toPlainText() == u"Eins"_s ? u"Zwei"_s : u"Eins"_s);
        QObject::connect(form, &QDialog::finished, form, [&closedAt] { closedAt = nowMs(); });
        part<QPushButton>(form, u"closeButton"_s)->click();
    });
    while (closedAt == 0 || m_watch->lastPaint() < closedAt) {
        QCoreApplication::processEvents();
    }
    QCoreApplication::processEvents();
    return nowMs() - closedAt;
}

void Browsing::look()
{
    constexpr int Glance = 200; // ms: five presses a second
    QEventLoop loop;
    QTimer::singleShot(Glance, &loop, &QEventLoop::quit);
    loop.exec();
}

void Browsing::press(ButtonItem *button)
{
    holder().current().activate(button);
    m_watch->waitForPaint();
}

void Browsing::pressMore()
{
    press(findButton(results().items(), ButtonKind::More));
}

ButtonItem *findButton(const QList<QGraphicsItem *> &items, ButtonKind kind)
{
    for (QGraphicsItem *item : items) {
        auto *button = qgraphicsitem_cast<ButtonItem *>(item);
        if (button && button->kind() == kind) {
            return button;
        }
    }
    qFatal("A button that is to be pressed is not there.");
}
