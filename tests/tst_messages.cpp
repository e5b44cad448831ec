#include "search/messagebox.h"
#include "search/messagedialog.h"
#include "tests/support/modalscript.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QPushButton>
#include <QSet>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

/// What a test wants to know of a box that is gone when it is asked.
struct SeenBox
{
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    Qt::TextFormat format = Qt::AutoText;
    QStringList buttons;
    QString defaultButton;
    QWidget *parent = nullptr;
    bool parentShown = false;
};

QString textOf(const QAbstractButton *button)
{
    return button == nullptr ? QString() : button->text().remove(u'&');
}

/// A step that writes down what it sees and answers with a button, or with Escape when the text is empty.
ModalScript::Step note(SeenBox &seen, ModalScript &script, const QString &answer)
{
    return [&seen, &script, answer](QWidget *widget) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        QVERIFY(box != nullptr);
        seen.title = box->windowTitle();
        seen.text = box->text();
        seen.icon = box->icon();
        seen.format = box->textFormat();
        for (const QAbstractButton *button : box->buttons()) {
            seen.buttons.append(textOf(button));
        }
        seen.defaultButton = textOf(box->defaultButton());
        seen.parent = box->parentWidget();
        seen.parentShown = seen.parent != nullptr && seen.parent->isVisible();
        if (answer.isEmpty()) {
            QTest::keyClick(box, Qt::Key_Escape);
        } else {
            script.click(box, answer);
        }
    };
}

} // namespace

class TestMessages final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void questionKeepsThePressedButton_data();
    void questionKeepsThePressedButton();
    void questionFillsInItsArgumentAndHasNoDefault();
    void informationHasTheSingleButtonOk();
    void dialogBehindTheBoxIsNeverShown();
    void onlyJaConfirms_data();
    void onlyJaConfirms();
    void confirmationOffersJaBeforeNein();
    void returnDoesNotConfirm();
    void textsAreNeverMarkup_data();
    void textsAreNeverMarkup();
    void longTextsAreCutWithoutBreakingACharacter();
    void aboutBoxIsRichText();
};

void TestMessages::questionKeepsThePressedButton_data()
{
    QTest::addColumn<QString>("press");
    QTest::addColumn<int>("answer");
    QTest::newRow("yes") << u"Ja"_s << int(QMessageBox::Yes);
    QTest::newRow("no") << u"Nein"_s << int(QMessageBox::No);
    QTest::newRow("Escape means no") << QString() << int(QMessageBox::No);
}

void TestMessages::questionKeepsThePressedButton()
{
    QFETCH(QString, press);
    SeenBox seen;
    ModalScript script;
    script.then(note(seen, script, press));
    const MessageDialog dialog(u"Titel"_s, u"Lok %1 löschen?"_s, u"101"_s);
    QTEST(dialog.answer(), "answer");
    QCOMPARE(script.problems(), QStringList());
}

void TestMessages::questionFillsInItsArgumentAndHasNoDefault()
{
    SeenBox seen;
    ModalScript script;
    script.then(note(seen, script, u"Nein"_s));
    const MessageDialog dialog(u"Frage"_s, u"Lok %1 löschen?"_s, u"7%1'8"_s);
    QCOMPARE(seen.title, u"Frage"_s);
    QCOMPARE(seen.text, u"Lok 7%1'8 löschen?"_s);
    QCOMPARE(seen.icon, QMessageBox::Warning);
    QCOMPARE(QSet<QString>(seen.buttons.begin(), seen.buttons.end()), QSet<QString>({ u"Ja"_s, u"Nein"_s }));
    QCOMPARE(seen.defaultButton, QString());
    QCOMPARE(script.problems(), QStringList());
}

void TestMessages::informationHasTheSingleButtonOk()
{
    SeenBox seen;
    ModalScript script;
    script.then(note(seen, script, u"OK"_s));
    const MessageDialog dialog(u"DB-Löschen"_s, u"database is locked"_s);
    QCOMPARE(dialog.answer(), int(QMessageBox::Ok));
    QCOMPARE(seen.title, u"DB-Löschen"_s);
    QCOMPARE(seen.text, u"database is locked"_s);
    QCOMPARE(seen.icon, QMessageBox::Information);
    QCOMPARE(seen.buttons, QStringList({ u"OK"_s }));
    QCOMPARE(script.problems(), QStringList());
}

void TestMessages::dialogBehindTheBoxIsNeverShown()
{
    SeenBox seen;
    ModalScript script;
    script.then(note(seen, script, u"OK"_s));
    MessageDialog dialog(u"Titel"_s, u"Text"_s);
    QCOMPARE(seen.parent, &dialog);
    QVERIFY(!seen.parentShown);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(script.problems(), QStringList());
}

void TestMessages::onlyJaConfirms_data()
{
    QTest::addColumn<QString>("press");
    QTest::addColumn<bool>("confirmed");
    QTest::newRow("yes") << u"Ja"_s << true;
    QTest::newRow("no") << u"Nein"_s << false;
    QTest::newRow("Escape") << QString() << false;
}

void TestMessages::onlyJaConfirms()
{
    QFETCH(QString, press);
    SeenBox seen;
    ModalScript script;
    script.then(note(seen, script, press));
    QTEST(MessageBox::confirm(nullptr, u"Titel"_s, u"Text"_s), "confirmed");
    QCOMPARE(script.problems(), QStringList());
}

void TestMessages::confirmationOffersJaBeforeNein()
{
    SeenBox seen;
    ModalScript script;
    script.then([&](QWidget *widget) {
        const auto *box = qobject_cast<QMessageBox *>(widget);
        QVERIFY(box != nullptr);
        for (QAbstractButton *button : box->buttons()) {
            const auto role = textOf(button) == u"Ja"_s ? QMessageBox::AcceptRole : QMessageBox::RejectRole;
            QCOMPARE(box->buttonRole(button), role);
        }
        note(seen, script, u"Nein"_s)(widget);
    });
    QVERIFY(!MessageBox::confirm(nullptr, u"Gruppe entfernen"_s, u"Sicher?"_s));
    QCOMPARE(seen.buttons, QStringList({ u"Ja"_s, u"Nein"_s }));
    QCOMPARE(seen.icon, QMessageBox::Warning);
    QCOMPARE(seen.title, u"Gruppe entfernen"_s);
    QCOMPARE(seen.text, u"Sicher?"_s);
    QCOMPARE(seen.parent, nullptr);
    QCOMPARE(script.problems(), QStringList());
}

void TestMessages::returnDoesNotConfirm()
{
    ModalScript script;
    script.then([](QWidget *widget) { QTest::keyClick(widget, Qt::Key_Return); });
    QVERIFY(!MessageBox::confirm(nullptr, u"Titel"_s, u"Text"_s));
    QCOMPARE(script.problems(), QStringList());
}

void TestMessages::textsAreNeverMarkup_data()
{
    QTest::addColumn<std::function<void(const QString &)>>("show");
    using Show = std::function<void(const QString &)>;
    QTest::newRow("warning") << Show([](const QString &text) { MessageBox::warning(nullptr, u"T"_s, text); });
    QTest::newRow("information") << Show([](const QString &text) { MessageBox::information(nullptr, u"T"_s, text); });
    QTest::newRow("question") << Show([](const QString &text) { (void)MessageBox::confirm(nullptr, u"T"_s, text); });
    QTest::newRow("dialog") << Show([](const QString &text) { const MessageDialog dialog(u"T"_s, text); });
    QTest::newRow("dialog with argument")
        << Show([](const QString &text) { const MessageDialog dialog(u"T"_s, u"%1"_s, text); });
}

void TestMessages::textsAreNeverMarkup()
{
    using Show = std::function<void(const QString &)>;
    QFETCH(Show, show);
    SeenBox seen;
    ModalScript script;
    script.then(note(seen, script, QString()));
    show(u"<b>x</b> <img src=\"/etc/hostname\">"_s);
    QCOMPARE(seen.text, u"<b>x</b> <img src=\"/etc/hostname\">"_s);
    QCOMPARE(seen.format, Qt::PlainText);
    QCOMPARE(script.problems(), QStringList());
}

void TestMessages::longTextsAreCutWithoutBreakingACharacter()
{
    SeenBox seen;
    ModalScript script;
    script.then(note(seen, script, u"OK"_s));
    MessageBox::warning(nullptr, u"Titel"_s, QString(299, u'W') + u"\U0001F682"_s + QString(10'000, u'W'));
    QCOMPARE(seen.text, QString(299, u'W') + u'…');
    QCOMPARE(script.problems(), QStringList());
}

void TestMessages::aboutBoxIsRichText()
{
    SeenBox seen;
    ModalScript script;
    script.then(note(seen, script, u"OK"_s));
    MessageBox::about(nullptr, u"Über"_s, u"<b>Bahnito</b>"_s);
    QCOMPARE(seen.title, u"Über"_s);
    QCOMPARE(seen.text, u"<b>Bahnito</b>"_s);
    QVERIFY(seen.format != Qt::PlainText);
    QCOMPARE(script.problems(), QStringList());
}

BAHNITO_TEST_MAIN(TestMessages)
#include "tst_messages.moc"
